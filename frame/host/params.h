#pragma once

#include "frame/host/counted.h"
#include "frame/host/extension.h"

#include <vector>

namespace qn {

/// A table of parameters by number: the store behind an `Extension`, and the arguments of a call.
/// Rows stand in rising order of their ids.
class Params final : public Extension {
public:
    static Counted<Params> Create();
    Params();
    ~Params() override;

    int GetParamType(int id) const override;
    void SetParam(int id, ParamWord value, k3_VALUETYPE type) override;
    ParamWord GetParam(int id, ParamWord fallback, k3_VALUETYPE type) const override;
    void SetParamVar(int id, const Var& value) override;
    Var GetParamVar(int id) const override;
    void DeleteParam(int id) override;

    /// The stored value or null.
    const Var* Find(int id) const noexcept;
    int GetCount() const noexcept { return static_cast<int>(rows_.size()); }
    int IdAt(int position) const { return rows_[static_cast<std::size_t>(position)].id; }
    const Var& ValueAt(int position) const { return rows_[static_cast<std::size_t>(position)].value; }
    /// A private copy; nested arrays and maps are copied, other objects shared.
    Counted<Params> Copy() const;

    const char* GetInterfaceName() const override { return "k3_params"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    struct Row {
        int id;
        Var value;
    };
    std::vector<Row> rows_;
};

}  // namespace qn
