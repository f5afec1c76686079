#include <lyr_core/LyrI18n.h>
#include <lyr_core/LyrOutOfMemory_p.h>

#include <atomic>
#include <utility>

namespace {

constinit std::atomic<LyrI18n::Translator*> currentTranslator{nullptr};

const char* textOf(const char* text) {
    return text ? text : "";
}

}  // namespace

LyrI18n::Translator::~Translator() = default;

LyrString LyrI18n::translate(const char* context, const char* key, const char* comment, Lyrenum language) {
    return lyrOrNothing([&] {
        const Translator* const translator = getTranslator();
        if (key == nullptr || translator == nullptr) {
            return LyrString(key);
        }
        LyrString text = translator->translate(textOf(context), key, textOf(comment), language);
        return text.isNull() ? LyrString(key) : std::move(text);
    });
}

LyrI18n::Translator* LyrI18n::setTranslator(Translator* translator) noexcept {
    return currentTranslator.exchange(translator, std::memory_order_acq_rel);
}

LyrI18n::Translator* LyrI18n::getTranslator() noexcept {
    return currentTranslator.load(std::memory_order_acquire);
}
