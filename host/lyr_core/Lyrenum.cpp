#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrRegisteredEnum.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lyr_core/Lyrenum.h>

#include <cstddef>
#include <map>
#include <mutex>
#include <new>
#include <unordered_map>

namespace {

/** First number given to names that are not the host's own. */
constexpr int FIRST_FREE_NUMBER = LYR_HOST_BLOCK + 10000;
constexpr const char* HOST_MODULE = "lyr_core";

struct NameRecord {
    int number = -1;
    int count = 0;
    std::map<std::string, int, std::less<>> countByModule;
};

class Registry {
public:
    /** Never destroyed: names are looked up until the very end of the process. */
    static Registry& instance() {
        alignas(Registry) static std::byte memory[sizeof(Registry)];
        static Registry& registry = *new (memory) Registry;
        return registry;
    }

    int add(std::string_view name, std::string_view module) {
        const std::lock_guard lock(mMutex);
        auto found = mRecords.find(name);
        const int number = found != mRecords.end() ? found->second.number : mNext;
        return insert(name, module, number);
    }

    bool remove(std::string_view name, std::string_view module) {
        const std::lock_guard lock(mMutex);
        auto found = mRecords.find(name);
        if (found == mRecords.end()) {
            return false;
        }
        auto& byModule = found->second.countByModule;
        auto count = byModule.find(module);
        if (count == byModule.end()) {
            return false;
        }
        if (--count->second == 0) {
            byModule.erase(count);
        }
        --found->second.count;
        return true;
    }

    template <class Reader>
    auto read(Reader reader) const {
        const std::lock_guard lock(mMutex);
        return reader(mRecords, mNames);
    }

private:
    Registry() {
#define LYR_REGISTER_HOST_NAME(name, offset) insert(#name, HOST_MODULE, LYR_HOST_BLOCK + (offset));
        LYR_HOST_IDENTIFIERS(LYR_REGISTER_HOST_NAME)
        LYR_HOST_NAMES(LYR_REGISTER_HOST_NAME)
        LYR_UNIT_IDENTIFIERS(LYR_REGISTER_HOST_NAME)
#undef LYR_REGISTER_HOST_NAME
    }

    /** Strong guarantee: an allocation that fails leaves counts and numbers as they were. */
    int insert(std::string_view name, std::string_view module, int number) {
        const auto [entry, isNew] = mRecords.try_emplace(std::string(name));
        NameRecord& record = entry->second;
        try {
            mNames.try_emplace(number, std::string(name));
            ++record.countByModule.try_emplace(std::string(module), 0).first->second;
        } catch (...) {
            if (isNew) {
                mNames.erase(number);
                mRecords.erase(entry);
            }
            throw;
        }
        ++record.count;
        record.number = number;
        if (number >= mNext) {
            mNext = number + 1;
        }
        return number;
    }

    mutable std::mutex mMutex;
    std::map<std::string, NameRecord, std::less<>> mRecords;
    std::unordered_map<int, std::string> mNames;
    int mNext = FIRST_FREE_NUMBER;
};

std::string_view viewOf(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}

}  // namespace

Lyrenum::Lyrenum(const char* name, bool mustExist) : mNumber(LyrIdentifierRegistry::find(name)) {
    if (mNumber == -1 && mustExist) {
        LyrError::emitError(LyrError::Message(Lyr::UnknownIdentifier));
    }
}

std::string Lyrenum::getName() const noexcept {
    return LyrIdentifierRegistry::nameOf(mNumber);
}

int LyrIdentifierRegistry::registerName(const char* name, const char* module) noexcept {
    try {
        return viewOf(name).empty() ? -1 : Registry::instance().add(name, viewOf(module));
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return -1;
    }
}

bool LyrIdentifierRegistry::unregisterName(const char* name, const char* module) noexcept {
    return Registry::instance().remove(viewOf(name), viewOf(module));
}

int LyrIdentifierRegistry::find(const char* name) noexcept {
    return Registry::instance().read([&](const auto& records, const auto&) {
        auto found = records.find(viewOf(name));
        return found != records.end() && found->second.count > 0 ? found->second.number : -1;
    });
}

std::string LyrIdentifierRegistry::nameOf(int number) noexcept {
    try {
        return Registry::instance().read([&](const auto&, const auto& names) {
            auto found = names.find(number);
            return found != names.end() ? found->second : std::string();
        });
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return {};
    }
}

int LyrIdentifierRegistry::registrationCount(const char* name) noexcept {
    return Registry::instance().read([&](const auto& records, const auto&) {
        auto found = records.find(viewOf(name));
        return found != records.end() ? found->second.count : 0;
    });
}

int LyrIdentifierRegistry::moduleRegistrationCount(const char* module) noexcept {
    return Registry::instance().read([&](const auto& records, const auto&) {
        int count = 0;
        for (const auto& [name, record] : records) {
            auto found = record.countByModule.find(viewOf(module));
            count += found != record.countByModule.end() ? found->second : 0;
        }
        return count;
    });
}

LyrRegisteredEnum::LyrRegisteredEnum(const char* name, bool permanent, const char* module) noexcept
    : mPermanent(permanent) {
    try {
        mName = viewOf(name);
        mModule = viewOf(module);
        mNumber = LyrIdentifierRegistry::registerName(name, module);
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    }
}

LyrRegisteredEnum::~LyrRegisteredEnum() {
    if (!mPermanent && mNumber != -1) {
        LyrIdentifierRegistry::unregisterName(mName.c_str(), mModule.c_str());
    }
}

bool __lyr_enum_init() {
    return LyrIdentifierRegistry::find("Type") == int(Lyr::Type);
}
