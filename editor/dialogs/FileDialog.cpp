// The file open and save dialog: folders first, then the files of the filter's extension, and a name.
#include <algorithm>
#include <filesystem>

#include "Dialogs.h"

namespace BR {

namespace fs = std::filesystem;

namespace {
bool HasExtension(const std::string& name, const std::string& extension) {
    const std::string tail = "." + extension;
    if (name.size() <= tail.size()) return false;
    return std::equal(tail.rbegin(), tail.rend(), name.rbegin(),
                      [](char a, char b) { return std::tolower(a) == std::tolower(b); });
}
}  // namespace

FileDialog::FileDialog(Mode mode_, const std::string& title, const std::string& filter,
                       const std::string& extension_, const std::string& startFolder,
                       std::function<bool(const std::string&)> chosen_, int32_t designWidth,
                       int32_t designHeight)
    : Dialog(title, 380, 190, designWidth, designHeight),
      mode(mode_),
      extension(extension_),
      chosen(std::move(chosen_)) {
    const float h = box[3] - box[1], w = box[2] - box[0];
    const float top = title.empty() ? h - 4 : h - 22;
    Add(DialogControl::kLabel, kFileFolder, "", 10, top - 18, w - 20, 18);
    Add(DialogControl::kList, kFileList, "", 10, 56, w - 20, top - 18 - 60);
    Add(DialogControl::kLabel, 0, "File name:", 10, 32, 70, 20);
    Add(DialogControl::kEdit, kFileName, "", 80, 32, w - 90, 20);
    Add(DialogControl::kLabel, kFileFilter, filter, 10, 8, w - 160, 20);
    Add(DialogControl::kButton, kDialogCancel, "Cancel", w - 140, 8, 60, 20);
    Add(DialogControl::kButton, kDialogOK, mode == kSave ? "Save" : "Open", w - 70, 8, 60, 20);
    focus = 3;  // the name field
    std::error_code ec;
    ShowFolder(startFolder.empty() || !fs::is_directory(startFolder, ec) ? fs::current_path(ec).string()
                                                                         : startFolder);
}

void FileDialog::ShowFolder(const std::string& path) {
    std::error_code ec;
    folder = fs::weakly_canonical(path, ec).string();
    if (folder.empty()) folder = "/";
    DialogControl& list = *Find(kFileList);
    std::vector<std::string> folders, files;
    for (const auto& entry :
         fs::directory_iterator(folder, fs::directory_options::skip_permission_denied, ec)) {
        const std::string name = entry.path().filename().string();
        if (name.empty() || name[0] == '.') continue;
        if (entry.is_directory(ec))
            folders.push_back(name + "/");
        else if (HasExtension(name, extension))
            files.push_back(name);
    }
    std::sort(folders.begin(), folders.end());
    std::sort(files.begin(), files.end());
    list.items.clear();
    if (folder != "/") list.items.push_back("../");
    list.items.insert(list.items.end(), folders.begin(), folders.end());
    list.items.insert(list.items.end(), files.begin(), files.end());
    list.selection = -1;
    list.firstVisible = 0;
    Find(kFileFolder)->text = folder;
    // The name may use what the folder leaves of the path's limit.
    const size_t used = folder.size() + 1;
    Find(kFileName)->maxLength = used < kMaxPath ? kMaxPath - used : 0;
}

std::string FileDialog::ChosenPath() const {
    const DialogControl* name = const_cast<FileDialog*>(this)->Find(kFileName);
    if (name->text.empty()) return "";
    std::string file = name->text;
    // Saving adds the default extension to a name without one.
    if (mode == kSave && fs::path(file).extension().empty()) file += "." + extension;
    // A name that starts with "/" is a whole path.
    const std::string path = file[0] == '/' ? file : (folder == "/" ? "/" : folder + "/") + file;
    return path.size() <= kMaxPath ? path : "";
}

void FileDialog::OnChange(DialogControl& control) {
    if (control.id != kFileList || control.selection < 0) return;
    const std::string& item = control.items[size_t(control.selection)];
    if (item.back() != '/') Find(kFileName)->text = item;
}

void FileDialog::OnListActivated(DialogControl& list) {
    const std::string item = list.items[size_t(list.selection)];
    if (item == "../")
        ShowFolder(fs::path(folder).parent_path().string());
    else if (item.back() == '/')
        ShowFolder(folder + "/" + item.substr(0, item.size() - 1));
    else
        OnButton(kDialogOK);
}

void FileDialog::OnButton(int32_t id) {
    if (id == kDialogOK) {
        const std::string path = ChosenPath();
        if (path.empty()) return;  // no name yet: the dialog stays
        std::error_code ec;
        if (fs::is_directory(path, ec)) {
            ShowFolder(path);
            Find(kFileName)->text.clear();
            return;
        }
        failed = chosen && !chosen(path);
    }
    Dialog::OnButton(id);
}

}  // namespace BR
