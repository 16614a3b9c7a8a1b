// Preferences, Enter Property, MIDI Browser and message boxes: their controls, and what each result does.
#include "Dialogs.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "editor/Manager.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/PreferenceStore.h"
#include "modules/events/MIDISender.h"

namespace BR {

namespace {
std::atomic<MIDIBrowserDeviceSource> deviceSource{nullptr};

const char* const kArrangements[] = {"5.1", "Stereo x3", "Mono x6"};

// Hands a folder or address to the desktop's opener, without waiting for it and leaving no child behind.
void OpenWithDesktop(const std::string& target) {
    const char* argv[] = {"xdg-open", target.c_str(), nullptr};
    const pid_t child = fork();
    if (child == 0) {
        if (fork() == 0) {
            execvp(argv[0], const_cast<char* const*>(argv));
            _exit(127);
        }
        _exit(0);
    }
    if (child > 0) waitpid(child, nullptr, 0);
}

// Writes a string property the way the modules take it: the characters and their terminator.
void WriteStringProperty(BrelCorvaneBase* module, uint32_t property, const std::string& text) {
    if (module) module->SetProperty(property, text.c_str(), uint32_t(text.size() + 1));
}
}  // namespace

void SetMIDIBrowserDeviceSource(MIDIBrowserDeviceSource source) {
    deviceSource = source;
}

std::vector<std::string> ListMIDIBrowserDevices() {
    MIDIBrowserDeviceSource source = deviceSource;
    if (source) return source();
    // Without a source of its own the browser lists what the host's MIDI output opener can open: the
    // names CV To MIDI's property 64100 matches.
    const MIDIOutputLister lister = GetMIDIOutputLister();
    return lister ? lister() : std::vector<std::string>{};
}

std::vector<std::string> ListSkinFolders(const std::string& productName) {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(SkinsFolder(productName), ec))
        if (entry.is_directory(ec)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

PreferencesDialog::PreferencesDialog(const std::string& product, int32_t designWidth, int32_t designHeight)
    : Dialog("Preferences", 400, 172, designWidth, designHeight), productName(product) {
    const float h = box[3] - box[1], w = box[2] - box[0];
    char version[96];
    std::snprintf(version, sizeof version, "%s %d.%d.%d", productName.c_str(), 2, 6, 1);
    Add(DialogControl::kLabel, kPrefsProduct, version, 10, h - 40, 200, 18);

    Add(DialogControl::kLabel, 0, "OSC Base Port:", 10, h - 62, 150, 18);
    DialogControl& port =
        Add(DialogControl::kEdit, kPrefsOSCBasePort,
            std::to_string(PreferenceStore::GetInt("OSC Base Port", 7000)), 165, h - 62, 70, 18);
    port.maxLength = 11;

    Add(DialogControl::kLabel, 0, "Skin:", 10, h - 84, 150, 18);
    DialogControl& skin = Add(DialogControl::kCombo, kPrefsSkin, "Default", 165, h - 84, 100, 18);
    skin.items.push_back("Default");
    for (const std::string& name : ListSkinFolders(productName))
        skin.items.push_back(name);
    std::string chosen;
    PreferenceStore::GetString("Skin", chosen);
    skin.selection = 0;
    for (size_t i = 1; i < skin.items.size(); ++i)
        if (skin.items[i] == chosen) skin.selection = int32_t(i);
    // A skin that is no longer there still shows under its name, as the preference holds it.
    if (!chosen.empty() && skin.selection == 0) {
        skin.items.push_back(chosen);
        skin.selection = int32_t(skin.items.size()) - 1;
    }
    skin.text = skin.items[size_t(skin.selection)];
    Add(DialogControl::kButton, kPrefsOpenSkinFolder, "Open skin folder", 272, h - 84, w - 282, 18);

    Add(DialogControl::kCheck, kPrefsEyeCandy, "Eye candy", 10, h - 108, 100, 18).checked = gEyeCandy;
    Add(DialogControl::kCheck, kPrefsConstantRedraw, "Constant redraw", 112, h - 108, 125, 18).checked =
        gConstantRedraw;
    Add(DialogControl::kCheck, kPrefsFloatingTooltip, "Floating tooltip", 240, h - 108, w - 245, 18).checked =
        gFloatingTooltip;

    Add(DialogControl::kLabel, 0, "VC output arrangement:", 10, h - 132, 150, 18);
    DialogControl& vc = Add(DialogControl::kCombo, kPrefsVCArrangement, "", 165, h - 132, 100, 18);
    vc.items.assign(std::begin(kArrangements), std::end(kArrangements));
    vc.selection = std::clamp(PreferenceStore::GetInt("VC output arrangement", 1), 0, 2);
    vc.text = vc.items[size_t(vc.selection)];

    Add(DialogControl::kLink, kPrefsLink, kMakerWebPage, 10, 8, 220, 20);
    Add(DialogControl::kButton, kDialogOK, "OK", w - 70, 8, 60, 20);
}

void PreferencesDialog::OnChange(DialogControl& control) {
    switch (control.id) {
        case kPrefsOSCBasePort:
            // Read as the decimal reader takes it: leading digits, anything else as it falls.
            PreferenceStore::SetInt("OSC Base Port", int32_t(std::atoi(control.text.c_str())));
            break;
        case kPrefsSkin:
            // Takes effect for editors opened from now on; "Default" is the empty name.
            PreferenceStore::SetString("Skin", control.selection <= 0 ? std::string() : control.text);
            break;
        case kPrefsEyeCandy:
            gEyeCandy = control.checked;
            PreferenceStore::SetInt("Enable eye candy", control.checked ? 1 : 0);
            break;
        case kPrefsConstantRedraw:
            gConstantRedraw = control.checked;
            PreferenceStore::SetInt("Enable constant redraw", control.checked ? 1 : 0);
            break;
        case kPrefsFloatingTooltip:
            gFloatingTooltip = control.checked;
            PreferenceStore::SetInt("Enable floating tooltip", control.checked ? 1 : 0);
            break;
        case kPrefsVCArrangement:
            // Instances made from now on take it.
            PreferenceStore::SetInt("VC output arrangement", control.selection);
            break;
        default:
            break;
    }
}

void PreferencesDialog::OnButton(int32_t id) {
    if (id == kPrefsOpenSkinFolder) {
        const std::string folder = SkinsFolder(productName);
        CreateFolders(folder);
        OpenWithDesktop(folder);
    } else if (id == kPrefsLink) {
        OpenWithDesktop(kMakerWebPage);
    } else {
        Dialog::OnButton(id);
    }
}

namespace {
// 320 px, or wider for a long caption (a field's tooltip such as "Enter target address and port (e.g.
// 127.0.0.1:7000)") so that it stays inside the frame: 7 px per character is above the dialog font's
// average advance. Never wider than the panel less a margin.
int32_t CaptionedWidth(const std::string& caption, int32_t designWidth) {
    const int32_t wanted = int32_t(caption.size()) * 7 + 20;
    return std::clamp(wanted, 320, std::max(320, designWidth - 20));
}
}  // namespace

EnterPropertyDialog::EnterPropertyDialog(BrelCorvaneBase* module_, uint32_t property_,
                                         const std::string& caption, int32_t designWidth,
                                         int32_t designHeight)
    : Dialog("Enter Property", CaptionedWidth(caption, designWidth), 110, designWidth, designHeight),
      module(module_),
      property(property_) {
    const float h = box[3] - box[1], w = box[2] - box[0];
    Add(DialogControl::kLabel, kDialogCaption, caption.empty() ? "Message:" : caption, 10, h - 42, w - 20,
        18);
    std::string current;
    const char* text = nullptr;
    if (module && module->GetProperty(property, &text) == kNoErr && text) current = text;
    Add(DialogControl::kEdit, kEnterPropertyField, current, 10, h - 66, w - 20, 20).maxLength = 1023;
    Add(DialogControl::kButton, kDialogCancel, "Cancel", w - 140, 8, 60, 20);
    Add(DialogControl::kButton, kDialogOK, "OK", w - 70, 8, 60, 20);
}

void EnterPropertyDialog::OnButton(int32_t id) {
    // An empty text is written too: it clears the property.
    if (id == kDialogOK) WriteStringProperty(module, property, Find(kEnterPropertyField)->text);
    Dialog::OnButton(id);
}

MIDIBrowserDialog::MIDIBrowserDialog(BrelCorvaneBase* module_, uint32_t property_,
                                     std::vector<std::string>& names_, int32_t designWidth,
                                     int32_t designHeight)
    : Dialog("MIDI Browser", 300, 180, designWidth, designHeight),
      module(module_),
      property(property_),
      names(names_) {
    const float h = box[3] - box[1], w = box[2] - box[0];
    names = ListMIDIBrowserDevices();
    Add(DialogControl::kLabel, kDialogCaption, "Select a MIDI target:", 10, h - 42, w - 20, 18);
    Add(DialogControl::kList, kMIDIBrowserList, "", 10, 36, w - 20, h - 82).items = names;
    Add(DialogControl::kButton, kDialogCancel, "Cancel", w - 140, 8, 60, 20);
    Add(DialogControl::kButton, kDialogOK, "OK", w - 70, 8, 60, 20);
}

void MIDIBrowserDialog::OnButton(int32_t id) {
    if (id != kDialogOK && id != kDialogCancel) return;
    const DialogControl* list = Find(kMIDIBrowserList);
    if (id == kDialogOK && list->selection >= 0 && list->selection < int32_t(names.size()))
        WriteStringProperty(module, property, names[size_t(list->selection)]);
    names.clear();
    Dialog::OnButton(id);
}

MessageBoxDialog::MessageBoxDialog(const std::string& title, const std::string& text, int32_t designWidth,
                                   int32_t designHeight)
    : Dialog(title, 260, 90, designWidth, designHeight) {
    const float h = box[3] - box[1], w = box[2] - box[0];
    Add(DialogControl::kLabel, kMessageText, text, 12, h - 46, w - 24, 18);
    Add(DialogControl::kButton, kDialogOK, "OK", (w - 60) * 0.5f, 8, 60, 20);
}

}  // namespace BR
