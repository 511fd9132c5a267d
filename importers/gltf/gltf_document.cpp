#include "importers/gltf/gltf_document.h"

#include "importers/gltf/document_reader.h"
#include "importers/gltf/gltf_check.h"

namespace qn::gltf {

Document ReadDocument(const FileSource& file) {
    Document document;
    document.container = ReadContainer(file);
    Container& container = document.container;
    DocumentReader(document.model).Read(container.text.get(), container.textLength, container.textCapacity);
    container.text.reset();
    CheckExtensions(document.model);
    CheckModel(document.model);
    return document;
}

}  // namespace qn::gltf
