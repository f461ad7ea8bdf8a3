#include "FileToAttach.h"

#include <commdlg.h>

#include <fstream>
#include <stdexcept>
#include <vector>

namespace
{
/// The whole content is in memory, here and, until the upload has ended, in the library's copy.
constexpr std::uintmax_t largest = 64 * 1024 * 1024;
} // namespace

std::deque<std::filesystem::path> chooseFiles(HWND owner)
{
    std::vector<wchar_t> names(32 * 1024); // the folder and then each name, or one whole path
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFile = names.data();
    dialog.nMaxFile = static_cast<DWORD>(names.size());
    dialog.lpstrTitle = L"Attach files";
    dialog.Flags =
        OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_ALLOWMULTISELECT | OFN_NOCHANGEDIR;
    if (GetOpenFileNameW(&dialog) == FALSE) {
        return {};
    }
    const std::filesystem::path first = names.data();
    std::deque<std::filesystem::path> files;
    for (const wchar_t* name = names.data() + first.native().size() + 1; *name != L'\0';
         name += std::wcslen(name) + 1) {
        files.push_back(first / name);
    }
    if (files.empty()) {
        files.push_back(first);
    }
    return files;
}

std::deque<std::filesystem::path> droppedFiles(HDROP drop)
{
    std::deque<std::filesystem::path> files;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::wstring name(DragQueryFileW(drop, i, nullptr, 0), L'\0');
        DragQueryFileW(drop, i, name.data(), static_cast<UINT>(name.size()) + 1);
        files.emplace_back(std::move(name));
    }
    DragFinish(drop);
    return files;
}

Attachment readFile(const std::filesystem::path& path)
{
    if (!is_regular_file(path)) {
        throw std::runtime_error("it is not a file");
    }
    const auto size = file_size(path);
    if (size > largest) {
        throw std::runtime_error("it is larger than 64 MiB");
    }
    Attachment attachment{std::string(static_cast<std::size_t>(size), '\0'), path.filename().native()};
    std::ifstream file(path, std::ios::binary);
    if (!file.read(attachment.data.data(), static_cast<std::streamsize>(size))) {
        throw std::runtime_error("it cannot be read");
    }
    return attachment;
}
