// The editor's dialogs: Preferences, Enter Property, MIDI Browser, the calibration file dialogs and
// message boxes, each a Dialog drawn over the panel.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Dialog.h"

class BrelCorvaneBase;

namespace BR {

// Control ids of the Preferences dialog.
enum PreferencesId : int32_t {
    kPrefsOpenSkinFolder = 138,
    kPrefsSkin = 139,
    kPrefsFloatingTooltip = 110,
    kPrefsOSCBasePort = 141,
    kPrefsEyeCandy = 143,
    kPrefsConstantRedraw = 144,
    kPrefsVCArrangement = 145,
    kPrefsLink = 146,
    kPrefsProduct = 147,
};
// Enter Property and MIDI Browser.
constexpr int32_t kDialogCaption = 201;
constexpr int32_t kEnterPropertyField = 202;
constexpr int32_t kMIDIBrowserList = 301;
// File dialogs: the folder shown, the file list, the name field and the filter.
constexpr int32_t kFileFolder = 401;
constexpr int32_t kFileList = 402;
constexpr int32_t kFileName = 403;
constexpr int32_t kFileFilter = 404;
// Message boxes: the text.
constexpr int32_t kMessageText = 501;

// The address the Preferences dialog's link opens.
constexpr const char* kMakerWebPage = "https://brelmont.example/corvane";

// "Preferences": each change is written to the preference file at once, and the editor flags follow.
class PreferencesDialog : public Dialog {
public:
    PreferencesDialog(const std::string& productName, int32_t designWidth, int32_t designHeight);

protected:
    void OnChange(DialogControl& control) override;
    void OnButton(int32_t id) override;

private:
    std::string productName;
};

// The skin folders the Preferences dialog offers after "Default": the names in the Skins folder, sorted.
std::vector<std::string> ListSkinFolders(const std::string& productName);

// "Enter Property": shows a string property; "OK" writes the text with its terminator, "Cancel" nothing.
class EnterPropertyDialog : public Dialog {
public:
    EnterPropertyDialog(BrelCorvaneBase* module, uint32_t property, const std::string& caption,
                        int32_t designWidth, int32_t designHeight);

protected:
    void OnButton(int32_t id) override;

private:
    BrelCorvaneBase* module;
    uint32_t property;
};

// "MIDI Browser": the output devices in device order; "OK" with a row writes its name into the property.
// `names` is the gui's vector: filled on open, cleared on close.
class MIDIBrowserDialog : public Dialog {
public:
    MIDIBrowserDialog(BrelCorvaneBase* module, uint32_t property, std::vector<std::string>& names,
                      int32_t designWidth, int32_t designHeight);

protected:
    void OnButton(int32_t id) override;

private:
    BrelCorvaneBase* module;
    uint32_t property;
    std::vector<std::string>& names;
};

// A titled text with "OK".
class MessageBoxDialog : public Dialog {
public:
    MessageBoxDialog(const std::string& title, const std::string& text, int32_t designWidth,
                     int32_t designHeight);
};

// Open or save one file: a folder's sub-folders and the files of the filter's extension, and a name field.
// "OK" hands the whole path to `chosen`; a non-empty answer is the error for the caller's message box.
class FileDialog : public Dialog {
public:
    enum Mode { kOpen, kSave };
    // Longest path, in characters, the dialog hands on.
    static constexpr size_t kMaxPath = 260;

    FileDialog(Mode mode, const std::string& title, const std::string& filter, const std::string& extension,
               const std::string& folder, std::function<bool(const std::string&)> chosen, int32_t designWidth,
               int32_t designHeight);
    const std::string& Folder() const { return folder; }
    // The path "OK" would hand on now, or "" when the name is empty.
    std::string ChosenPath() const;
    bool Failed() const { return failed; }

protected:
    void OnChange(DialogControl& control) override;
    void OnButton(int32_t id) override;
    void OnListActivated(DialogControl& list) override;

private:
    void ShowFolder(const std::string& path);

    Mode mode;
    std::string extension;
    std::string folder;
    std::function<bool(const std::string&)> chosen;
    bool failed = false;
};

// The devices the MIDI Browser lists, in device order. A source set here comes first; without one the
// list is the host's MIDI output devices (the lister installed beside the device opener), or empty.
using MIDIBrowserDeviceSource = std::vector<std::string> (*)();
void SetMIDIBrowserDeviceSource(MIDIBrowserDeviceSource source);
std::vector<std::string> ListMIDIBrowserDevices();

}  // namespace BR
