#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <vector>

namespace {

struct Channel {
    std::recursive_mutex mutex;
    std::vector<LyrError::Listener*> listeners;

    static Channel& instance() {
        static Channel channel;
        return channel;
    }
};

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

std::string LyrError::Message::getText() const {
    const char* known = textOf(mCode);
    std::string text = known ? known : "error " + std::to_string(int(mCode));
    if (mSource) {
        text += " (";
        text += mSource->getMetaClass().getClassName();
        text += ')';
    }
    return text;
}

LyrError::Listener::Listener() {
    Channel& channel = Channel::instance();
    const std::lock_guard lock(channel.mutex);
    channel.listeners.push_back(this);
}

LyrError::Listener::~Listener() {
    Channel& channel = Channel::instance();
    const std::lock_guard lock(channel.mutex);
    std::erase(channel.listeners, this);
}

void LyrError::emitError(const Message& message) noexcept {
    try {
        Channel& channel = Channel::instance();
        const std::lock_guard lock(channel.mutex);
        const std::vector<Listener*> snapshot(channel.listeners.rbegin(), channel.listeners.rend());
        for (Listener* listener : snapshot) {
            const bool alive =
                std::find(channel.listeners.begin(), channel.listeners.end(), listener) != channel.listeners.end();
            if (alive && listener->errorEmitted(message)) {
                return;
            }
        }
        std::fprintf(stderr, "lyr: %s\n", message.getText().c_str());
    } catch (...) {
        // Out of memory while reporting: the fixed text needs none.
        std::fputs("lyr: an error could not be reported\n", stderr);
    }
}
