#pragma once

#include "frame/host/objects.h"

#include <functional>
#include <string>
#include <vector>

namespace qn::test {

/// An object for tests of streams: a name, links to other objects, and whatever a test adds to its body.
class Knot final : public ReferenceSource {
public:
    static constexpr const char* kKey = "test.knot";
    static constexpr int kNameChunk = 0x1000, kLinkChunk = 0x1001, kWeakChunk = 0x1002, kExtraChunk = 0x1003;
    using Extra = std::function<ResultEnum(Stream& stream)>;

    explicit Knot(std::string name = {});

    std::string name;
    std::vector<Counted<Interface>> links;
    std::vector<Weak<Interface>> weakLinks;
    std::vector<bool> linkWasRead;  // of each link that is a knot: whether its body had been read by then
    bool wasRead = false;
    Extra saveExtra;                  // writes into kExtraChunk
    static inline Extra loadExtra;    // reads kExtraChunk; skipped if not set
    static inline Extra saveInstead;  // stands for the whole of Save

    Knot& Link(Interface* object);
    Knot* At(std::size_t index) const { return Cast<Knot>(links.at(index).Get()); }

    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum Load(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    void Clear() override { links.clear(); }
    const char* GetInterfaceName() const override { return kKey; }
    bool IsTypeOf(const char* type) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

/// A new knot with its only count; makes the class known to files.
Counted<Knot> MakeKnot(std::string name = {});

/// Writes and reads at once; expects that both succeed.
std::string Saved(Interface& root);
Counted<Interface> Loaded(std::string_view bytes);
template <class T>
Counted<T> Copied(T& root) {
    return CountedCast<T>(Loaded(Saved(root)));
}

}  // namespace qn::test
