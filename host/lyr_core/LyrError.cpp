#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrScratch.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <new>
#include <utility>

namespace {

/** What standard error was told of late. An error that comes with every frame stands there once. */
class Told {
public:
    /** True for an error that is not among the last ones; of those, it is only counted. */
    bool isNew(const LyrError::Message& message) noexcept {
        // A source may be gone: its address and its class tell it apart, they are not followed.
        const LyrClass* source = message.getSource();
        const LyrMetaClass* meta = source ? &source->getMetaClass() : nullptr;
        for (const Entry& entry : mEntries) {
            if (entry.used && entry.source == source && entry.meta == meta && entry.code == message.getCode()) {
                ++mRepeats;
                return false;
            }
        }
        mEntries[mNext] = {true, source, meta, message.getCode()};
        mNext = (mNext + 1) % mEntries.size();
        return true;
    }
    unsigned long long takeRepeats() noexcept { return std::exchange(mRepeats, 0); }

private:
    struct Entry {
        bool used = false;
        const LyrClass* source = nullptr;
        const LyrMetaClass* meta = nullptr;
        int code = 0;
    };
    std::array<Entry, 8> mEntries;
    std::size_t mNext = 0;
    unsigned long long mRepeats = 0;
};

/** Recursive: a listener may report, and listeners may come and go meanwhile. */
struct Channel {
    std::recursive_mutex mutex;
    LyrEmbeddedList<LyrError::Listener, LyrError::Listener> listeners;
    Told told;

    /** Never destroyed: errors may be reported until the very end of the process. */
    static Channel& instance() {
        alignas(Channel) static std::byte memory[sizeof(Channel)];
        static Channel& channel = *new (memory) Channel;
        return channel;
    }

    bool has(const LyrError::Listener* wanted) const noexcept {
        for (const LyrError::Listener* at = listeners.first(); at; at = listeners.next(at)) {
            if (at == wanted) {
                return true;
            }
        }
        return false;
    }
};

/** A listener that fails has not heard. */
bool heard(LyrError::Listener& listener, const LyrError::Message& message) noexcept {
    try {
        return listener.errorEmitted(message);
    } catch (...) {
        return false;
    }
}

const char* textOf(int code) {
    switch (code) {
        case int(Lyr::Failed):
            return "the operation failed";
        case int(Lyr::UnknownIdentifier):
            return "an identifier of this name is not registered";
        case int(Lyr::ReadOnly):
            return "the property cannot be written";
        case int(Lyr::InvalidParameters):
            return "the parameters were refused";
        case int(Lyr::WrongType):
            return "an object is not of the expected type";
        case int(Lyr::AllocationFailed):
            return "memory could not be allocated";
        case int(Lyr::AlreadyRegistered):
            return "the name or property is registered already";
        case int(Lyr::Locked):
            return "the list is locked for reading";
        default:
            return nullptr;
    }
}

}  // namespace

std::string LyrError::Message::getText() const noexcept {
    try {
        const char* known = textOf(mCode);
        std::string text = known ? known : "error " + std::to_string(int(mCode));
        if (mSource) {
            text += " (";
            text += mSource->getMetaClass().getClassName();
            text += ')';
        }
        return text;
    } catch (...) {
        return {};
    }
}

LyrError::Listener::Listener() {
    Channel& channel = Channel::instance();
    const std::lock_guard lock(channel.mutex);
    channel.listeners.append(this);
}

LyrError::Listener::~Listener() {
    Channel& channel = Channel::instance();
    const std::lock_guard lock(channel.mutex);
    channel.listeners.remove(this);
}

void LyrError::emitError(const Message& message) noexcept {
    Channel& channel = Channel::instance();
    const std::lock_guard lock(channel.mutex);
    LyrScratch<Listener*> snapshot;
    for (Listener* at = channel.listeners.first(); at; at = channel.listeners.next(at)) {
        if (!snapshot.append(at)) {
            break;
        }
    }
    for (std::size_t i = snapshot.size(); i-- > 0;) {
        if (channel.has(snapshot[i]) && heard(*snapshot[i], message)) {
            return;
        }
    }
    if (!channel.told.isNew(message)) {
        return;
    }
    if (const unsigned long long repeats = channel.told.takeRepeats(); repeats > 0) {
        std::fprintf(stderr, "lyr: the errors above were repeated %llu times\n", repeats);
    }
    const std::string text = message.getText();
    // Out of memory while reporting: the fixed text needs none.
    std::fprintf(stderr, "lyr: %s\n", text.empty() ? "an error could not be reported" : text.c_str());
}
