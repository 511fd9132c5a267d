#pragma once

#include "frame/host/params.h"
#include "frame/host/result.h"
#include "frame/host/scene_document.h"

namespace qn::graph {

class HierarchyOperation;

/// The arguments of a call by their place. What is missing reads as false or as the empty text: defaults are
/// the caller's business.
class MethodArguments {
public:
    explicit MethodArguments(const Params& values) : values_(values) {}

    bool Bool(int place) const { return values_.GetParamVar(place).ToBool(); }
    String Text(int place) const { return values_.GetParamVar(place).to_string().ToText(); }
    /// Converted by the value itself.
    String PlainText(int place) const { return values_.GetParamVar(place).ToText(); }
    /// Borrowed from the arguments, or null.
    Interface* Object(int place) const { return values_.GetParamVar(place).ToInterface(); }
    Interface* Pointer(int place) const { return values_.GetParamObject(place); }

private:
    const Params& values_;
};

/// One call of a method.
struct MethodCall {
    HierarchyOperation& operation;
    MethodArguments arguments;
    Context* context;  ///< may be null
    k3::Scene* scene;  ///< null for methods that take none
};

/// What calls answer.
namespace MethodResult {
inline constexpr int kDone = 1;
inline constexpr int kRefused = 0;
inline constexpr int kIncomplete = ToInt(ResultEnum::kWriteFailed);
}  // namespace MethodResult

inline int AnswerOf(bool yes) {
    return yes ? MethodResult::kDone : MethodResult::kRefused;
}

/// The bools at rising places from `first` on, folded into a word: the I-th true one gives masks[I].
template <class... Masks>
unsigned ReadFlags(const MethodArguments& arguments, int first, Masks... masks) {
    unsigned flags = 0;
    ((flags |= arguments.Bool(first++) ? static_cast<unsigned>(masks) : 0u), ...);
    return flags;
}

}  // namespace qn::graph
