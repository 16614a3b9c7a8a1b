// Status texts and histories: frame bytes, the Quantizer's note, the Follower's readings, the Learner's
// captions.
#include "InfoDisplays.h"

#include <GL/glew.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "editor/GuiFont.h"
#include "framework/ActiveParameter.h"
#include "framework/InstanceRegistry.h"
#include "modules/events/Follower.h"
#include "modules/events/Learner.h"
#include "modules/events/LearnerTable.h"
#include "modules/sequencing/Quantizer.h"
#include "remote/OSCHelper.h"
#include "remote/RemoteServices.h"

namespace BR {

namespace {
const char* kNoteNames[12] = {"C ", "C#", "D ", "D#", "E ", "F ", "F#", "G ", "G#", "A ", "A#", "B "};

GuiFont* ReadyFont(Manager* manager) {
    GuiFont* font = manager->mainFont;
    return font && font->Loaded() ? font : nullptr;
}
}  // namespace

InfoDisplay::InfoDisplay(Manager* manager, int32_t count_)
    : ModuleDisplay(manager), count(std::clamp(count_, int32_t(0), int32_t(16))) {
    shownBytes.fill(-1);
}

void InfoDisplay::Draw() {
    GuiFont* font = ReadyFont(manager);
    // Without its font the display draws nothing at all.
    if (!visible || !font) return;
    ModuleDisplay::Draw();
    if (cellWidth == 0) cellWidth = font->Advance("000 ");
    ModuleStatusBlock* block = StatusBlock();
    glColor4f(0.1f, 0.1f, 0.1f, 1.0f);
    for (int32_t i = 0; i < count; ++i) {
        const int32_t value = block ? block->moduleData[i] : 0;
        if (value != shownBytes[size_t(i)] || texts[size_t(i)].Text().empty()) {
            // The text is rebuilt only when its byte changes.
            char text[8];
            std::snprintf(text, sizeof text, "%3d", int(value));
            texts[size_t(i)].SetText(font, text);
            shownBytes[size_t(i)] = value;
        }
        texts[size_t(i)].DrawAt(rect[0] + 2 + float(i) * cellWidth, rect[1] + 2 - font->Descender());
    }
}

QuantizerInfoDisplay::QuantizerInfoDisplay(Manager* manager, int32_t index_)
    : ModuleDisplay(manager), index(index_) {}

std::string QuantizerInfoDisplay::NoteText(int32_t note) {
    if (note < 0) return "";
    char text[32];
    std::snprintf(text, sizeof text, "%s%d  %d", kNoteNames[note % 12], int(note / 12 - 1), int(note));
    return text;
}

void QuantizerInfoDisplay::Draw() {
    if (!visible) return;
    GuiFont* font = ReadyFont(manager);
    ModuleStatusBlock* block = StatusBlock();
    const int32_t note =
        block ? block->As<BrelCorvaneQuantizer::QuantizerStatus>().currentNote[index & 1] : -1;
    const float textHeight = font ? font->Ascender() - font->Descender() : 12.0f;
    glColor4f(0.55f, 0.55f, 0.55f, 1.0f);
    glRectf(rect[0] - 3, rect[1] + textHeight, rect[3] + 3, rect[1] + textHeight + 20);
    if (note != shownNote && font) {
        text.SetText(font, NoteText(note).c_str());
        shownNote = note;
    }
    glColor4f(0.9f, 0.9f, 0.9f, 1.0f);
    if (font) text.DrawAt(rect[0], rect[1] - font->Descender());
    // Seven cells, one per white key from C.
    const float cell = Width() * 0.14285715f, bottom = rect[1] + textHeight;
    glColor4f(0.4f, 0.4f, 0.4f, 1.0f);
    glBegin(GL_LINES);
    for (int i = 0; i <= 7; ++i)
        glVertex2f(rect[0] + float(i) * cell, bottom), glVertex2f(rect[0] + float(i) * cell, bottom + 20);
    glEnd();
    if (note < 0) return;
    const char* name = kNoteNames[note % 12];
    int letter = name[0] - 'C';
    if (letter < 0) letter += 7;
    const bool sharp = name[1] == '#';
    const float x = rect[0] + float(letter) * cell + (sharp ? 0.5f * cell : 0.0f);
    if (sharp)
        glColor4f(0, 0, 0, 1), glRectf(x, bottom + 10, x + cell - 1, bottom + 20);
    else
        glColor4f(0.8f, 0.8f, 0.8f, 1), glRectf(x, bottom, x + cell - 1, bottom + 10);
}

FollowerInfoDisplay::FollowerInfoDisplay(Manager* manager) : ModuleDisplay(manager) {}

std::string FollowerInfoDisplay::NoteName(float frequency) {
    if (!(frequency > 0)) return "";
    // Semitones from A 440, through the reciprocal of the reference.
    const float semitones = 12.0f * std::log2(frequency * 0.0022727272f) + 69.0f;
    const int note = int(std::lround(semitones));
    const float cents = (semitones - float(note)) * 100.0f;
    char text[32];
    std::snprintf(text, sizeof text, "%s%d%+.0f", kNoteNames[((note % 12) + 12) % 12], note / 12 - 1, cents);
    std::string result = text;
    result.erase(std::remove(result.begin(), result.end(), ' '), result.end());
    return result;
}

void FollowerInfoDisplay::Draw() {
    if (!visible) return;
    ModuleDisplay::Draw();
    GuiFont* font = ReadyFont(manager);
    ModuleStatusBlock* block = StatusBlock();
    if (!font || !block) return;
    const auto& status = block->As<BrelCorvaneFollower::FollowerStatus>();
    const float frequency = status.noPitch ? 0.0f : status.frequency;
    char text[64];
    if (frequency != shownFrequency || lines[0].Text().empty()) {
        std::snprintf(text, sizeof text, "%6.1fHz  %s", double(frequency), NoteName(frequency).c_str());
        lines[0].SetText(font, text);
        shownFrequency = frequency;
    }
    if (status.pitchVolts != shownVolts || lines[1].Text().empty()) {
        std::snprintf(text, sizeof text, "%6.3fV  %6.3f", double(status.pitchVolts), double(status.level));
        lines[1].SetText(font, text);
        shownVolts = status.pitchVolts;
    }
    const float lineHeight = font->Ascender() - font->Descender() + 2;
    glColor4f(0.9f, 0.9f, 0.9f, 1.0f);
    lines[0].DrawAt(rect[0] + 4, rect[4] - lineHeight);
    lines[1].DrawAt(rect[0] + 4, rect[4] - 2 * lineHeight);
}

FollowerEnvDisplay::FollowerEnvDisplay(Manager* manager) : ModuleDisplay(manager) {}

void FollowerEnvDisplay::Animate() {
    ModuleStatusBlock* block = StatusBlock();
    if (!block) return;
    const auto& status = block->As<BrelCorvaneFollower::FollowerStatus>();
    const float level = std::clamp(status.level, 0.0f, 1.0f);
    peak = std::max(level, peak * 0.98f);
    if (++position >= kLength) {
        // At the wrap the last entry becomes the first, so that the line runs on without a gap; the
        // new sweep writes from entry 1.
        levelRing[0] = levelRing[kLength - 1];
        envelopeRing[0] = envelopeRing[kLength - 1];
        peakRing[0] = peakRing[kLength - 1];
        position = 1;
    }
    levelRing[size_t(position)] = level;
    envelopeRing[size_t(position)] = std::clamp(status.envelope, 0.0f, 1.0f);
    peakRing[size_t(position)] = peak;
}

void FollowerEnvDisplay::DrawContent() {
    auto stripOf = [&](const std::array<float, kLength>& ring) -> const std::vector<float>& {
        strip.clear();
        for (int i = 0; i < kLength; ++i) {
            strip.push_back(float(i) / float(kLength - 1));
            strip.push_back(ring[size_t((position + 1 + i) % kLength)]);
        }
        return strip;
    };
    FillUnitStrip(stripOf(levelRing), 0.0f, fillColour);
    DrawUnitStrip(stripOf(envelopeRing), lineColour);
    DrawUnitStrip(stripOf(peakRing), peakLineColour);
}

FollowerPitchDisplay::FollowerPitchDisplay(Manager* manager) : ModuleDisplay(manager) {}

float FollowerPitchDisplay::AxisPosition(float frequency) {
    // log10 50 at the bottom, two decades (to 5 kHz) up to the top.
    if (!(frequency > 0)) return 0.0f;
    return std::clamp((std::log10(frequency) - 1.69897f) / 2.0f, 0.0f, 1.0f);
}

void FollowerPitchDisplay::Animate() {
    ModuleStatusBlock* block = StatusBlock();
    if (!block) return;
    const auto& status = block->As<BrelCorvaneFollower::FollowerStatus>();
    if (++position >= kLength) {
        ring[0] = ring[kLength - 1];  // as the level history: the line runs on across the wrap
        position = 1;
    }
    ring[size_t(position)] = AxisPosition(status.noPitch ? 0.0f : status.frequency);
}

const std::vector<float>& FollowerPitchDisplay::BuildStrip() {
    strip.clear();
    for (int i = 0; i < kLength; ++i) {
        strip.push_back(float(i) / float(kLength - 1));
        strip.push_back(ring[size_t((position + 1 + i) % kLength)]);
    }
    return strip;
}

void FollowerPitchDisplay::DrawContent() {
    DrawUnitStrip(BuildStrip(), lineColour);
}

LearnerInfoDisplay::LearnerInfoDisplay(Manager* manager) : ModuleDisplay(manager) {
    backgroundColour[3] = 0.0f;
    lineColour[3] = 0.0f;
}

void LearnerInfoDisplay::DrawIntoPanel(GuiFont* font) {
    if (!font || !font->Loaded()) return;
    const Point offset = ParentOffset();
    const float row = font->Ascender() - font->Descender();
    const float x = rect[0] + offset.x + 10;
    float y = rect[4] + offset.y - row;
    glColor4f(0.7f, 0.7f, 0.7f, 1.0f);
    for (const char* caption : {"Short OSC Path", "Compact OSC Path", "Long OSC Path"}) {
        font->Render(caption, x, y);
        y -= row;
    }
    y -= 1.5f * row;
    font->Render("Active Parameter", x, y);
    y -= 1.5f * row;
    font->Render("Message History", x, y);
    font->Render("OSC Message History", x + 350, y);
}

namespace {
// A module's name and its two numbers, " %d (%d)": "Corvane DC 1 (2)". Caller holds the registry lock;
// empty when the instance is no longer registered (its pointer is then never followed).
std::string InstanceName(BrelCorvaneBase* instance) {
    uint32_t localId = 0, globalId = 0;
    if (!instance || !InstanceRegistry::GetInstanceIds(instance, localId, globalId)) return "";
    char numbers[32];
    std::snprintf(numbers, sizeof numbers, " %d (%d)", int(localId), int(globalId));
    return std::string(instance->GetModuleName()) + numbers;
}

// One message of the learn hub's ring: controllers show number and value glued to "CC", the others
// their first data byte. Channels count from 1.
std::string MidiText(const BrelCorvaneLearner::RecentMessage& m) {
    const char* kind;
    switch (m.status & 0xF0) {
        case 0x80:
            kind = "Note Off";
            break;
        case 0x90:
            kind = "Note";
            break;
        case 0xA0:
            kind = "PP";
            break;
        case 0xB0:
            kind = "CC";
            break;
        case 0xC0:
            kind = "PC";
            break;
        case 0xD0:
            kind = "CP";
            break;
        case 0xE0:
            kind = "PB";
            break;
        default:
            kind = "?";
            break;
    }
    char text[64];
    if ((m.status & 0xF0) == 0xB0) {
        std::snprintf(text, sizeof text, " : Ch%d %s%d %d", int(m.channel & 15) + 1, kind, int(m.dataByte1),
                      int(m.dataByte2));
    } else {
        std::snprintf(text, sizeof text, " : Ch%d %s %d", int(m.channel & 15) + 1, kind, int(m.dataByte1));
    }
    return text;
}

std::string Bounded(std::string text) {
    if (text.size() > LearnerInfoDisplay::kMaxText) text.resize(LearnerInfoDisplay::kMaxText);
    return text;
}
}  // namespace

LearnerLines LearnerInfoDisplay::BuildLines(BrelCorvaneBase* learner) {
    LearnerLines lines;
    {
        // The touched instance may be closed by now: the registry, under its lock, says whether it
        // still stands before anything of it is read.
        std::lock_guard<std::recursive_mutex> guard(InstanceRegistry::Lock());
        BrelCorvaneBase* instance = nullptr;
        int32_t parameter = -1;
        GetActiveParameter(instance, parameter);
        const std::string name = InstanceName(instance);
        if (!name.empty() && parameter >= 0 && parameter < instance->NumTableParameters()) {
            using namespace BrelCorvaneLearner;
            const int32_t forms[3] = {kSendShort, kSendCompact, kSendLong};
            for (int k = 0; k < 3; ++k) {
                char path[256];
                if (BuildPath(instance, parameter, forms[k], path, sizeof path))
                    lines.paths[k] = Bounded(path);
            }
            lines.active = Bounded(name + " " + instance->ParameterTable()[parameter].name);
        }
        for (int k = 0; k < LearnerLines::kRows; ++k) {
            const BrelCorvaneLearner::RecentMessage m =
                BrelCorvaneLearner::RecentMessageAt(LearnerLines::kRows - 1 - k);
            if (!m.source) continue;
            lines.midi[k] = Bounded(InstanceName(m.source) + MidiText(m));
        }
    }
    // The OSC ring: the newest at the running index, so the oldest is the one after it. Its strings are
    // copied under the server's own short history lock (an unlocked copy of a string being reassigned
    // could follow a freed buffer), then cut to a bounded length.
    OSCHelper* osc = learner ? OSCHelperOf(*learner) : nullptr;
    if (osc) {
        const int32_t newest = osc->MessageHistoryIndex();
        for (int k = 0; k < LearnerLines::kRows; ++k)
            lines.osc[k] = Bounded(osc->MessageHistory((newest + 1 + k) % OSCHelper::kHistorySize));
    }
    return lines;
}

void LearnerInfoDisplay::Draw() {
    if (!visible) return;
    GuiFont* font = ReadyFont(manager);
    if (!font) return;
    const int64_t now = std::chrono::duration_cast<std::chrono::milliseconds>(
                            std::chrono::steady_clock::now().time_since_epoch())
                            .count();
    if (lastBuildMilliseconds < 0 || now - lastBuildMilliseconds >= kRebuildMilliseconds) {
        lines = BuildLines(manager->module);
        lastBuildMilliseconds = now;
    }
    const float line = font->Ascender() - font->Descender();
    const float x = rect[0] + 10, top = rect[4];
    glColor4f(0.9f, 0.9f, 0.9f, 1.0f);
    // Beside the captions, 150 px right of them: the three paths on rows 1 to 3, the parameter 2.5 rows
    // below; the two histories on the five rows under their captions (7 rows down).
    for (int k = 0; k < 3; ++k) {
        paths[k].SetText(font, lines.paths[k].c_str());
        paths[k].DrawAt(x + 150, top - float(k + 1) * line);
    }
    active.SetText(font, lines.active.c_str());
    active.DrawAt(x + 150, top - 5.5f * line);
    for (int k = 0; k < LearnerLines::kRows; ++k) {
        const float y = top - (8.0f + float(k)) * line;
        midi[k].SetText(font, lines.midi[k].c_str());
        midi[k].DrawAt(x, y);
        osc[k].SetText(font, lines.osc[k].c_str());
        osc[k].DrawAt(x + 350, y);
    }
}

}  // namespace BR
