#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/Lyrenum.h>

#include <string>

/** Keeps one registration of an identifier's name: made by the constructor, taken back by the destructor. */
class LYR_CORE_EXPORT LyrRegisteredEnum {
public:
    /** `permanent` keeps the name registered after the destructor; plug-ins pass false. */
    LyrRegisteredEnum(const char* name, bool permanent, const char* module) noexcept;
    ~LyrRegisteredEnum();
    LyrRegisteredEnum(const LyrRegisteredEnum&) = delete;
    LyrRegisteredEnum& operator=(const LyrRegisteredEnum&) = delete;

    /** The number of the name; -1 if it could not be registered. */
    Lyrenum get() const noexcept { return mNumber; }

private:
    std::string mName;
    std::string mModule;
    bool mPermanent;
    Lyrenum mNumber;
};
