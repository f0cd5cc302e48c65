#pragma once

#include <rx/tv_rx_class.h>

/// The host's root class: an object that knows its class at run time.
class TvRxObject
{
public:
    virtual ~TvRxObject();
    static TvRxClass* desc();
    virtual TvRxClass* isA() const { return desc(); }
    bool isKindOf(const TvRxClass* type) const { return isA()->isDerivedFrom(type); }

protected:
    TvRxObject() = default;
    TvRxObject(const TvRxObject&) = default;
    TvRxObject& operator=(const TvRxObject&) = default;
};

/// Put into the class body: declares desc() and isA() of a class derived from TvRxObject.
#define TVRX_DECLARE_MEMBERS(Class)                                                                \
public:                                                                                            \
    static TvRxClass* desc();                                                                      \
    TvRxClass* isA() const override                                                                \
    {                                                                                              \
        return desc();                                                                             \
    }

/// Put into one source file: the class's one instance, with its parent.
#define TVRX_DEFINE_MEMBERS(Class, Parent)                                                         \
    TvRxClass* Class::desc()                                                                       \
    {                                                                                              \
        static TvRxClass instance(u"" #Class, Parent::desc());                                     \
        return &instance;                                                                          \
    }

/// @p object as a @p T when its class is T or derived from it; null otherwise, and for null.
template <class T>
T* tvrxCast(TvRxObject* object)
{
    return object && object->isKindOf(T::desc()) ? static_cast<T*>(object) : nullptr;
}
template <class T>
const T* tvrxCast(const TvRxObject* object)
{
    return object && object->isKindOf(T::desc()) ? static_cast<const T*>(object) : nullptr;
}
