#include "window/start_page.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <app/words.h>
#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <ui/drawing_picture.h>
#include <ui/icon.h>
#include <ui/qt_text.h>
#include <ui/theme.h>

namespace window {

namespace {

constexpr QSize kPicture(168, 120);
constexpr QSize kCell(196, 172);
constexpr int kPathRole = Qt::UserRole;

QString words(app::Word word, const std::vector<TvString>& arguments = {})
{
    return ui::toQt(app::textOf(word, arguments));
}

bool isSheetSet(const TvString& path)
{
    return base::PathRules::native().extensionOf(path).compareNoCase(u".dst") == 0;
}

/// The picture on a card of one size, whatever its own.
QIcon cardOf(const QImage& picture, qreal ratio)
{
    QPixmap card(kPicture * ratio);
    card.setDevicePixelRatio(ratio);
    card.fill(ui::color(ui::ColorRole::Base));
    QPainter painter(&card);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QRect place(QPoint(), picture.size().scaled(kPicture, Qt::KeepAspectRatio));
    place.moveCenter(QRect(QPoint(), kPicture).center());
    painter.drawImage(place, picture);
    painter.setPen(ui::color(ui::ColorRole::Border));
    painter.drawRect(QRectF(0.5, 0.5, kPicture.width() - 1, kPicture.height() - 1));
    return QIcon(card);
}

} // namespace

StartPage::StartPage(QWidget* parent)
    : QWidget(parent), m_empty(new QLabel(words(app::Word::StartEmpty), this)),
      m_list(new QListWidget(this))
{
    m_list->setViewMode(QListView::IconMode);
    m_list->setIconSize(kPicture);
    m_list->setGridSize(kCell);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setMovement(QListView::Static);
    m_list->setWordWrap(true);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setUniformItemSizes(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setAccessibleName(words(app::Word::StartRecent));
    m_list->installEventFilter(this);
    m_empty->setTextFormat(Qt::PlainText);
    auto* heading = new QLabel(words(app::Word::StartRecent), this);
    heading->setTextFormat(Qt::PlainText);
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    heading->setFont(large);
    auto* row = new QHBoxLayout;
    makeButtons(*row);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 20, 24, 12);
    column->setSpacing(12);
    column->addLayout(row);
    column->addWidget(heading);
    column->addWidget(m_empty);
    column->addWidget(m_list, 1);
    column->addStretch(0); // for the place of an empty list
    for (QLabel* label : {heading, m_empty})
        label->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    QObject::connect(m_list, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
        if (onOpen)
            onOpen(pathOf(item));
    });
    m_pictures.setInterval(0);
    QObject::connect(&m_pictures, &QTimer::timeout, this, [this] { showNextPicture(); });
}

void StartPage::makeButtons(QHBoxLayout& row)
{
    const struct {
        app::Word text;
        const char* icon;
        const TvChar* command;
    } kButtons[] = {{app::Word::StartNew, "new", u"_NEW"},
                    {app::Word::StartOpen, "open", u"_OPEN"},
                    {app::Word::StartOpenSet, "sheet-set", u"_OPENSHEETSET"}};
    for (const auto& each : kButtons) {
        auto* button = new QPushButton(ui::icon(QLatin1String(each.icon)), words(each.text), this);
        button->setAutoDefault(true); // Enter presses it
        QObject::connect(button, &QPushButton::clicked, this, [this, command = each.command] {
            if (onCommand)
                onCommand(command);
        });
        row.addWidget(button);
    }
    row.addStretch(1);
}

TvString StartPage::pathOf(const QListWidgetItem* item)
{
    return item ? TvString(ui::fromQt(item->data(kPathRole).toString())) : TvString();
}

void StartPage::setFiles(const std::vector<TvString>& files)
{
    m_empty->setVisible(files.empty());
    m_list->setVisible(!files.empty());
    if (files == m_files)
        return;
    m_files = files;
    m_waiting.clear();
    m_list->clear();
    for (const TvString& path : files)
        addFile(path);
    if (isVisible())
        m_pictures.start();
}

void StartPage::addFile(const TvString& path)
{
    const TvString name = base::PathRules::native().fileNameOf(path);
    auto* item = new QListWidgetItem(ui::icon(isSheetSet(path) ? u"sheet-set" : u"drawing"),
                                     ui::toQt(base::escapedForDisplay(name)), m_list);
    item->setData(kPathRole, ui::toQt(path));
    item->setToolTip(ui::toQt(path).toHtmlEscaped());
    item->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
    item->setSizeHint(kCell - QSize(12, 12));
    if (!isSheetSet(path))
        m_waiting.push_back(item);
}

void StartPage::showNextPicture()
{
    if (m_waiting.empty() || !isVisible())
        return m_pictures.stop();
    QListWidgetItem* item = m_waiting.front();
    m_waiting.pop_front();
    const TvString path = pathOf(item);
    const QImage picture = KvFileSystem::pathFileExists(path) ? ui::drawingPicture(path) : QImage();
    if (!picture.isNull())
        item->setIcon(cardOf(picture, devicePixelRatioF()));
}

void StartPage::showEvent(QShowEvent*)
{
    m_pictures.start();
    if (!m_list->currentItem() && m_list->count() > 0)
        m_list->setCurrentRow(0);
}

bool StartPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_list && event->type() == QEvent::KeyPress)
        return keyPressed(*static_cast<QKeyEvent*>(event));
    return QWidget::eventFilter(watched, event);
}

bool StartPage::keyPressed(QKeyEvent& event)
{
    const TvString path = pathOf(m_list->currentItem());
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!path.isEmpty() && onOpen)
            onOpen(path);
        return true;
    case Qt::Key_Delete:
        if (!path.isEmpty() && onForget)
            onForget(path);
        return true;
    default: break;
    }
    if (event.text().isEmpty() || !event.text()[0].isPrint() || !onTyped)
        return false;
    onTyped(&event);
    return true;
}

} // namespace window
