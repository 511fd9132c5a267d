#pragma once

#include "frame/host/generator.h"

#include <string>

namespace qn {

/// A generator as it stands in a file: knows its class key and what it generates from, and generates nothing.
/// Readers that ask for the definition graph alone (`kInertGenerators`) get it in place of the real one,
/// which would index every occurrence.
class StoredGenerator final : public k3::Generator {
public:
    explicit StoredGenerator(std::string key) : key_(std::move(key)) {}

    Interface* GetGeneratedRoot() const override { return root_.Get(); }
    /// kNothing: the target stays as it is.
    ResultEnum Generate(Extension* target, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return key_.c_str(); }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    std::string key_;
    Counted<Interface> root_;
};

}  // namespace qn
