#pragma once

#include <lyr_core/LyrMetaClass.h>

/** Makes views; they cannot be copied. */
template <class View>
class LyqViewFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void* storage) const override { return storage ? new (storage) View() : new View(); }
    LyrClass* createCopy(const LyrClass*, void*) const override { return nullptr; }
    bool assign(LyrClass*, const LyrClass*) const override { return false; }
    bool isStorable() const override { return false; }
};
