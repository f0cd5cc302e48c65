#pragma once

#include <deque>
#include <functional>
#include <vector>

#include <QTimer>
#include <QWidget>

#include <base/tv_string.h>

class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QListWidget;
class QListWidgetItem;

namespace window {

/// What the window shows while nothing is open: new, open, and the recent drawings and sheet sets
/// with their pictures.
///
/// Arrows choose, Enter or a double click opens, Delete takes out of the list; what is typed goes
/// to the command line. Pictures come one by one, while nothing else is to be done.
class StartPage : public QWidget
{
public:
    explicit StartPage(QWidget* parent = nullptr);

    /// The latest first. What is the same as before stays as it is.
    void setFiles(const std::vector<TvString>& files);
    QListWidget& list() { return *m_list; }
    bool hasAllPictures() const { return m_waiting.empty(); }

    std::function<void(const TvString&)> onCommand; ///< New and Open
    std::function<void(const TvString&)> onOpen;
    std::function<void(const TvString&)> onForget;
    std::function<void(QKeyEvent*)> onTyped; ///< keys that are for the command line

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void makeButtons(QHBoxLayout& row);
    void addFile(const TvString& path);
    void showNextPicture();
    bool keyPressed(QKeyEvent& event);
    static TvString pathOf(const QListWidgetItem* item);

    std::vector<TvString> m_files;
    std::deque<QListWidgetItem*> m_waiting; // for their pictures; the list's
    QTimer m_pictures;
    QLabel* m_empty; // owned by the toolkit, as below
    QListWidget* m_list;
};

} // namespace window
