#include <lys_core/LyqPresetRegistry.h>

LyqPresetRegistry::Receiver::~Receiver() {
    instance().remove(this);
}

LyqPresetRegistry& LyqPresetRegistry::instance() {
    static LyqPresetRegistry registry;
    return registry;
}

bool LyqPresetRegistry::add(Lyrenum id, Receiver* receiver) {
    return receiver && mReceivers.emplace(int(id), receiver).first->second == receiver;
}

void LyqPresetRegistry::remove(Receiver* receiver) {
    std::erase_if(mReceivers, [receiver](const auto& entry) { return entry.second == receiver; });
}

LyqPresetRegistry::Receiver* LyqPresetRegistry::find(Lyrenum id) const {
    const auto found = mReceivers.find(int(id));
    return found == mReceivers.end() ? nullptr : found->second;
}
