// The modules that send MIDI, and the capture of their messages with frames.
#include "ModuleMidiOutput.h"

#include <algorithm>

#include "modules/events/CVToMIDI.h"

namespace BR {

namespace {
BrelCorvaneCVToMIDI::BrelCorvane* Sender(BrelCorvaneBase& module) {
    return dynamic_cast<BrelCorvaneCVToMIDI::BrelCorvane*>(&module);
}
}  // namespace

bool ModuleSendsMidi(BrelCorvaneBase& module) {
    return Sender(module) != nullptr;
}

ModuleMidiCapture::ModuleMidiCapture(size_t capacity, bool growable_)
    : messages(capacity), growable(growable_) {}

ModuleMidiCapture::~ModuleMidiCapture() {
    Detach();
}

bool ModuleMidiCapture::Attach(HostDriver& driver_) {
    Detach();
    BrelCorvaneCVToMIDI::BrelCorvane* module = Sender(driver_.Module());
    if (!module) return false;
    driver = &driver_;
    module->SetMessageTap(&Tap, this);
    return true;
}

void ModuleMidiCapture::Detach() {
    if (!driver) return;
    Sender(driver->Module())->SetMessageTap(nullptr, nullptr);
    driver = nullptr;
}

void ModuleMidiCapture::Tap(void* context, uint32_t frame, uint8_t status, uint8_t data1, uint8_t data2) {
    auto& self = *static_cast<ModuleMidiCapture*>(context);
    if (self.count == self.messages.size()) {
        if (!self.growable) {
            ++self.lost;
            return;
        }
        self.messages.resize(std::max<size_t>(16, self.messages.size() * 2));
    }
    self.messages[self.count++] = SentMidi{self.driver->RenderedFrames() + frame, {status, data1, data2}};
}

const SentMidi* ModuleMidiCapture::Sorted() {
    // Insertion sort: stable, in place, and quick on the few runs (one per channel and block) that a
    // module's messages come in.
    for (size_t i = 1; i < count; ++i) {
        const SentMidi m = messages[i];
        size_t j = i;
        for (; j > 0 && messages[j - 1].frame > m.frame; --j)
            messages[j] = messages[j - 1];
        messages[j] = m;
    }
    return messages.data();
}

}  // namespace BR
