#pragma once

#include "frame/host/extension.h"

namespace qn {

class Context;

namespace k3 {
class Scene;
}

namespace qfxml {

/// Class keys of the classes in this file. Modules beside this one make them; a host may have none of them.
namespace ExchangeKey {
inline constexpr const char* kMetadataExport = "qn.qfxml.brineservermetadataexport";
inline constexpr const char* kShallowExporter = "qn.qfxml.mbomexporter";
inline constexpr const char* kVisualContextResolver = "qn.qfxml.visualcontextresolver";
}  // namespace ExchangeKey

/// Writes what a scene knows about itself to a file and a folder of long texts.
class BrineServerMetadataExport : public Extension {
public:
    /// `topLevelOnly`: the scene and its top-level nodes alone. Gives true if everything was written; causes
    /// go to the context, which may be null.
    virtual bool Export(k3::Scene* scene, const String& outputFile, const String& blobFolder,
                        bool topLevelOnly, Context* context) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::qfxml::BrineServerMetadataExport");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<BrineServerMetadataExport, Extension>(this, wanted);
    }
};

/// Writes a structure without its geometry.
class ShallowExporter : public Extension {
public:
    /// The arguments of a call by number, in order: three texts, the object to export, a second object (may
    /// be null), four texts. The class itself gives them their meaning. True if it was written.
    virtual bool Export(const String& text0, const String& text1, const String& text2, Interface* object3,
                        Interface* object4, const String& text5, const String& text6, const String& text7,
                        const String& text8, Context* context) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::qfxml::ShallowExporter");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<ShallowExporter, Extension>(this, wanted);
    }
};

/// Knows which part of a file is wanted (its visual context) and brings that part into a scene.
class VisualContextResolver : public Extension {
public:
    /// Writes a query: for what the index has near the file's content, or without index for all of the file.
    virtual bool Extract(const String& sourceFile, const String& spatialIndexFile, const String& outputFile,
                         Context* context) = 0;
    /// Merges the files of an array of texts into the scene, under the filter of the context (parameter
    /// 0xa7).
    virtual bool Merge(const Var& files, k3::Scene* scene, Context* context) = 0;
    /// The filter that a query file asks for, in the form of context parameter 0xa7; on failure one that
    /// wants nothing.
    virtual Var ReadFilter(const String& queryFile, Context* context) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::qfxml::VisualContextResolver");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<VisualContextResolver, Extension>(this, wanted);
    }
};

}  // namespace qfxml
}  // namespace qn
