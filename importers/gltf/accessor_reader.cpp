#include "importers/gltf/accessor_reader.h"

#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>

namespace qn::gltf {
namespace {

/// Elements that stand at regular distances; checked against the bytes that are there.
struct Elements {
    const std::uint8_t* first;
    std::size_t stride;
    std::size_t count;
};

/// How the components of one element become the numbers of the result.
using Convert = void (*)(const std::uint8_t* element, std::uint32_t components, void* out);

template <class Stored>
Stored Load(const std::uint8_t* bytes) {
    Stored value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

template <class Stored, class Result>
void ConvertPlain(const std::uint8_t* element, std::uint32_t components, void* out) {
    auto* to = static_cast<Result*>(out);
    for (std::uint32_t i = 0; i < components; ++i)
        to[i] = static_cast<Result>(Load<Stored>(element + i * sizeof(Stored)));
}

template <class Stored>
void ConvertNormalized(const std::uint8_t* element, std::uint32_t components, void* out) {
    auto* to = static_cast<float*>(out);
    constexpr float kGreatest = static_cast<float>(std::numeric_limits<Stored>::max());
    for (std::uint32_t i = 0; i < components; ++i)
        to[i] = std::max(static_cast<float>(Load<Stored>(element + i * sizeof(Stored))) / kGreatest, -1.0f);
}

struct ComponentType {
    int number;
    std::size_t size;
    Convert toFloat;
    Convert toNormalizedFloat;  ///< null: cannot be normalised
    Convert toIndex;            ///< null: cannot be an index
};
constexpr ComponentType kComponentTypes[] = {
    {5120, 1, &ConvertPlain<std::int8_t, float>, &ConvertNormalized<std::int8_t>, nullptr},
    {5121, 1, &ConvertPlain<std::uint8_t, float>, &ConvertNormalized<std::uint8_t>,
     &ConvertPlain<std::uint8_t, std::uint32_t>},
    {5122, 2, &ConvertPlain<std::int16_t, float>, &ConvertNormalized<std::int16_t>, nullptr},
    {5123, 2, &ConvertPlain<std::uint16_t, float>, &ConvertNormalized<std::uint16_t>,
     &ConvertPlain<std::uint16_t, std::uint32_t>},
    {5125, 4, &ConvertPlain<std::uint32_t, float>, nullptr, &ConvertPlain<std::uint32_t, std::uint32_t>},
    {5126, 4, &ConvertPlain<float, float>, nullptr, nullptr},
};

const ComponentType& TypeOf(int number, const std::string& place) {
    const auto found = std::find_if(std::begin(kComponentTypes), std::end(kComponentTypes),
                                    [&](const ComponentType& type) { return type.number == number; });
    if (found == std::end(kComponentTypes))
        FailAt(place + "/componentType",
               "expected 5120 to 5123, 5125 or 5126, found " + std::to_string(number));
    return *found;
}

Elements ElementsIn(Bytes bytes, std::uint64_t offset, std::size_t stride, std::size_t size,
                    std::uint64_t count, const std::string& place) {
    if (stride < size)
        FailAt(place, "elements of " + std::to_string(size) + " bytes stand " + std::to_string(stride) +
                          " bytes apart");
    const std::uint64_t needed = count == 0 ? 0 : (count - 1) * stride + size;
    if (offset > bytes.size() || needed > bytes.size() - offset)
        FailAt(place, std::to_string(count) + " elements need " + std::to_string(needed) +
                          " bytes from byte " + std::to_string(offset) + " on, the buffer view has " +
                          std::to_string(bytes.size()));
    return {bytes.data() + offset, stride, static_cast<std::size_t>(count)};
}

/// Reads one accessor, whose components become `Result`s.
template <class Result>
class Reader {
public:
    Reader(BufferStore& store, const Model& model, std::uint32_t index)
        : store_(store),
          accessor_(model.accessors[index]),
          place_(PointerTo("accessors", index)),
          type_(TypeOf(accessor_.componentType, place_)),
          convert_(ChooseConvert()) {}

    std::vector<Result> Read(std::uint32_t components) {
        if (accessor_.components != components)
            FailAt(place_ + "/type", "expected " + std::to_string(components) + " components, found " +
                                         std::to_string(accessor_.components));
        const std::size_t size = components * type_.size;
        std::vector<Result> numbers;
        if (accessor_.view != kNone) {
            const std::uint32_t stride = store_.StrideOf(accessor_.view);
            const Elements elements = ElementsIn(store_.GetView(accessor_.view), accessor_.offset,
                                                 stride ? stride : size, size, accessor_.count, place_);
            Resize(numbers, components);
            for (std::size_t i = 0; i < elements.count; ++i)
                convert_(elements.first + i * elements.stride, components, &numbers[i * components]);
        } else {
            store_.GetAllowance().TakeUnbacked(accessor_.count, place_ + "/count");
            Resize(numbers, components);
        }
        if (accessor_.sparse.count > 0) PutSparse(numbers, components, size);
        return numbers;
    }

private:
    Convert ChooseConvert() const {
        Convert convert = type_.toFloat;
        if constexpr (!std::is_same_v<Result, float>) {
            convert = accessor_.normalized ? nullptr : type_.toIndex;
        } else if (accessor_.normalized) {
            convert = type_.toNormalizedFloat;
        }
        if (!convert)
            FailAt(place_ + "/componentType",
                   std::to_string(type_.number) + " is no type that can be used for this");
        return convert;
    }

    /// Zeros for all elements.
    void Resize(std::vector<Result>& numbers, std::uint32_t components) {
        if (accessor_.count > gltf_limits::kMostVertices)
            FailAt(place_ + "/count",
                   "expected at most " + std::to_string(gltf_limits::kMostVertices) + " elements, found " +
                       std::to_string(accessor_.count),
                   LoadFailure::kLimit);
        const std::size_t count = std::size_t{accessor_.count} * components;
        store_.GetAllowance().Take(count * sizeof(Result), place_);
        numbers.resize(count);
    }

    void PutSparse(std::vector<Result>& numbers, std::uint32_t components, std::size_t size) {
        const Sparse& sparse = accessor_.sparse;
        const std::string place = place_ + "/sparse";
        if (sparse.count > accessor_.count)
            FailAt(place + "/count", "expected at most " + std::to_string(accessor_.count) + ", found " +
                                         std::to_string(sparse.count));
        const ComponentType& indexType = TypeOf(sparse.indexType, place + "/indices");
        if (!indexType.toIndex) FailAt(place + "/indices/componentType", "expected 5121, 5123 or 5125");
        const Elements indices = ElementsIn(store_.GetView(sparse.indexView), sparse.indexOffset,
                                            indexType.size, indexType.size, sparse.count, place + "/indices");
        const Elements values = ElementsIn(store_.GetView(sparse.valueView), sparse.valueOffset, size, size,
                                           sparse.count, place + "/values");
        for (std::size_t i = 0; i < indices.count; ++i) {
            std::uint32_t index = 0;
            indexType.toIndex(indices.first + i * indices.stride, 1, &index);
            if (index >= accessor_.count)
                FailAt(place + "/indices", "expected indices below " + std::to_string(accessor_.count) +
                                               ", found " + std::to_string(index));
            convert_(values.first + i * values.stride, components, &numbers[std::size_t{index} * components]);
        }
    }

    BufferStore& store_;
    const Accessor& accessor_;
    std::string place_;
    const ComponentType& type_;
    Convert convert_;
};

}  // namespace

std::vector<float> ReadFloats(BufferStore& store, const Model& model, std::uint32_t accessor,
                              std::uint32_t components) {
    return Reader<float>(store, model, accessor).Read(components);
}

std::vector<std::uint32_t> ReadIndices(BufferStore& store, const Model& model, std::uint32_t accessor) {
    return Reader<std::uint32_t>(store, model, accessor).Read(1);
}

}  // namespace qn::gltf
