#pragma once

#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrMetaClass.h>

#include <new>
#include <type_traits>

/** The factory of a class that can be default-constructed and copied. */
template <class T>
class LyrClassFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void* storage) const override { return storage ? new (storage) T() : new T(); }

    LyrClass* createCopy(const LyrClass* from, void* storage) const override {
        if (!isOne(from)) {
            return nullptr;
        }
        const T& source = *static_cast<const T*>(from);
        return storage ? new (storage) T(source) : new T(source);
    }

    bool assign(LyrClass* to, const LyrClass* from) const override {
        if (!isOne(to) || !isOne(from)) {
            return false;
        }
        T& target = *static_cast<T*>(to);
        const T& source = *static_cast<const T*>(from);
        if constexpr (requires { target.copyFrom(source); }) {
            return target.copyFrom(source);
        } else {
            target = source;
            return true;
        }
    }

private:
    static bool isOne(const LyrClass* object) { return object && object->getMetaClass().isOfType(T::metaClass()); }
};
