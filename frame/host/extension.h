#pragma once

#include "frame/host/interface.h"
#include "frame/host/var.h"

#include <cstdint>

namespace qn {

class Context;
class Params;
class VarMap;
namespace xml {
class Element;
}

/// Argument and result of the untyped parameter calls: an integer, or a pointer.
using ParamWord = std::uintptr_t;

enum k3_VALUETYPE : int {
    kValueInteger = 2,    ///< the second argument of GetParam is the default
    kValueObject = 0x0f,  ///< stored counted, given borrowed
    kValueInt64 = 0x10,   ///< the second argument of GetParam points at the receiving 64-bit integer
};

/// An object with a description, calls by number, parameters and metadata.
class Extension : public Interface {
public:
    ~Extension() override;

    /// `kInterfaceVersion` of the contract.
    virtual int GetInterfaceVersion() const;
    /// The tag of the stored parameter, 0 if there is none.
    virtual int GetParamType(int id) const;
    virtual ResultEnum QueryInfo(xml::Element* document, unsigned mask);
    virtual int Invoke(int method, Params* arguments, Context* context);
    virtual ResultEnum InvokeCommand(const Var& command, const Var& argument, Context* context);
    virtual void SetParam(int id, ParamWord value, k3_VALUETYPE type);
    virtual ParamWord GetParam(int id, ParamWord fallback, k3_VALUETYPE type) const;
    /// Shares the entries of SetParam; an empty value erases the entry.
    virtual void SetParamVar(int id, const Var& value);
    virtual Var GetParamVar(int id) const;
    virtual void DeleteParam(int id);
    /// The metadata map, borrowed; made if missing and `create`, else null.
    virtual VarMap* GetMetadata(bool create) const;
    /// Shares the map; null clears.
    virtual void SetMetadata(VarMap* map);
    virtual Params* GetParams(bool create);
    virtual void SetParams(Params* params);

    const char* GetInterfaceName() const override { return "k3_extension"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

    /// One flat metadata entry; "/" in the key means nothing.
    void SetMetaValue(const Var& key, const Var& value);
    void SetParamObject(int id, Interface* object) {
        SetParam(id, reinterpret_cast<ParamWord>(object), kValueObject);
    }
    Interface* GetParamObject(int id) const {
        return reinterpret_cast<Interface*>(GetParam(id, 0, kValueObject));
    }

protected:
    Params* params_ = nullptr;            ///< counted, made on demand
    mutable VarMap* metadata_ = nullptr;  ///< counted, made on demand
};

}  // namespace qn
