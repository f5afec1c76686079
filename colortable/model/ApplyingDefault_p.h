#pragma once

#include <lyr_core/LyrClass.h>

/** Marks a property as having its default applied while this lives. */
class ApplyingDefault {
public:
    explicit ApplyingDefault(LyrClass& property) noexcept : mProperty(property) { mProperty.setProtectedFlags(16, 0); }
    ~ApplyingDefault() { mProperty.setProtectedFlags(0, 0); }
    ApplyingDefault(const ApplyingDefault&) = delete;
    ApplyingDefault& operator=(const ApplyingDefault&) = delete;

private:
    LyrClass& mProperty;
};
