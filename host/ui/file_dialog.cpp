#include "ui/file_dialog.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

#include <QFileDialog>
#include <QStandardPaths>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/tv_status.h>

#include "ui/main_frame.h"
#include "ui/qt_text.h"
#include "ui/window_state.h"

namespace ui {

namespace {

constexpr int kFilterText = 23330, kAllFilesText = 23331;
constexpr int kPatienceMs = 700;
constexpr TvChar kFolders[] = u"FileDialogs\\";

bool g_usesOwnDialogs = false;

/// What a thread that may never come back and its asker have in common.
struct Asked {
    std::mutex mutex;
    std::condition_variable isAnswered;
    std::optional<bool> answer;
};

struct Start {
    TvString folder, file;
};

/// The folder of a question's start, and the file's name when it names one.
std::optional<Start> startFrom(const TvString& start)
{
    if (start.isEmpty())
        return std::nullopt;
    if (folderAnswers(start, kPatienceMs))
        return Start{start, {}};
    const int slash = start.findLastOneOf(u"/\\");
    const TvString folder = slash == TvString::npos ? TvString() : start.left(slash);
    if (!folder.isEmpty() && folderAnswers(folder, kPatienceMs))
        return Start{folder, start.substr(slash + 1)};
    return std::nullopt;
}

Start startOf(const ed::UserPrompts::FileQuestion& question, const TvString& key)
{
    if (const std::optional<Start> given = startFrom(question.start))
        return *given;
    if (const TvString kept = rememberedText(key);
        !kept.isEmpty() && folderAnswers(kept, kPatienceMs))
        return {kept, {}};
    const TvString documents =
        fromQt(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (folderAnswers(documents, kPatienceMs))
        return {documents, {}};
    return {fromQt(QStandardPaths::writableLocation(QStandardPaths::HomeLocation)), {}};
}

QStringList filtersOf(const std::vector<TvString>& extensions)
{
    QStringList filters;
    QStringList patterns;
    for (const TvString& extension : extensions)
        patterns.append(QStringLiteral("*.") + toQt(extension));
    for (const QString& pattern : patterns) {
        const TvString arguments[] = {fromQt(pattern.mid(2).toUpper()), fromQt(pattern)};
        filters.append(textOf(kFilterText, arguments));
    }
    if (patterns.size() > 1) {
        const QString joined = patterns.join(QLatin1Char(' '));
        const TvString arguments[] = {
            fromQt(patterns.join(QLatin1String(", ")).remove(QLatin1String("*.")).toUpper()),
            fromQt(joined)};
        filters.prepend(textOf(kFilterText, arguments));
    }
    return filters.isEmpty() ? QStringList(textOf(kAllFilesText)) : filters;
}

void furnish(QFileDialog& dialog, const ed::UserPrompts::FileQuestion& question, const Start& start)
{
    dialog.setOption(QFileDialog::DontUseCustomDirectoryIcons); // they are read from each folder
    dialog.setOption(QFileDialog::DontUseNativeDialog, g_usesOwnDialogs);
    if (question.isForFolder) {
        dialog.setOption(QFileDialog::ShowDirsOnly);
        dialog.setFileMode(QFileDialog::Directory);
    } else {
        dialog.setFileMode(question.mayBeSeveral ? QFileDialog::ExistingFiles
                                                 : QFileDialog::ExistingFile);
        dialog.setNameFilters(filtersOf(question.extensions));
    }
    dialog.setDirectory(toQt(start.folder));
    if (!start.file.isEmpty())
        dialog.selectFile(toQt(start.file));
}

} // namespace

bool folderAnswers(const TvString& folder, int withinMs)
{
    if (folder.isEmpty() || !KvFileSystem::isTouchAllowed(folder))
        return false;
    const auto asked = std::make_shared<Asked>();
    // A call to a share that is gone cannot be taken back: the thread is left to it.
    std::thread([asked, path = base::nativePath(folder)] {
        std::error_code error;
        const bool isThere = std::filesystem::is_directory(path, error);
        const std::lock_guard lock(asked->mutex);
        asked->answer = isThere;
        asked->isAnswered.notify_one();
    }).detach();
    std::unique_lock lock(asked->mutex);
    asked->isAnswered.wait_for(lock, std::chrono::milliseconds(withinMs),
                               [&] { return asked->answer.has_value(); });
    return asked->answer.value_or(false);
}

void useOwnFileDialogs(bool isOn)
{
    g_usesOwnDialogs = isOn;
}

int askFiles(const ed::UserPrompts::FileQuestion& question, std::vector<TvString>& out,
             QWidget* parent)
{
    const TvString key = TvString(kFolders) + question.dialogName;
    QFileDialog dialog(parent ? parent : dialogParent(), toQt(question.title));
    furnish(dialog, question, startOf(question, key));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return ed::kCancelled;
    out.clear();
    for (const QString& path : dialog.selectedFiles())
        out.push_back(fromQt(path));
    if (!question.dialogName.isEmpty())
        rememberText(key, question.isForFolder ? out.front()
                                               : fromQt(dialog.directory().absolutePath()));
    return static_cast<int>(TvStatus::Normal);
}

} // namespace ui
