#pragma once

#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrMetaClass.h>

#include <new>
#include <type_traits>

/** The factory of a class that can be default-constructed. Objects are copied by their copy constructor; properties,
 * which have none, are made anew and take over the value. */
template <class T>
class LyrClassFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void* storage) const override { return storage ? new (storage) T() : new T(); }

    LyrClass* createCopy(const LyrClass* from, void* storage) const override {
        const auto* source = dynamic_cast<const T*>(from);
        if (!source) {
            return nullptr;
        }
        if constexpr (std::is_copy_constructible_v<T>) {
            return storage ? new (storage) T(*source) : new T(*source);
        } else {
            LyrClass* made = create(storage);
            if (made && !assign(made, source)) {
                LyrMetaClass::destruct(made, storage == nullptr);
                return nullptr;
            }
            return made;
        }
    }

    bool assign(LyrClass* to, const LyrClass* from) const override {
        auto* target = dynamic_cast<T*>(to);
        const auto* source = dynamic_cast<const T*>(from);
        if (!target || !source) {
            return false;
        }
        if constexpr (requires { target->copyFrom(*source); }) {
            return target->copyFrom(*source);
        } else if constexpr (requires { target->copyValueFrom(*source); }) {
            return target->copyValueFrom(*source);
        } else {
            *target = *source;
            return true;
        }
    }
};
