#include "ui/kv_preview_static.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>

#include "ui/qt_text.h"
#include "ui/theme.h"

namespace {

constexpr int kMostSidePx = 8192; // no preview is larger; a header may say what it likes
constexpr int kBitmapHeaderBytes = 40, kFileHeaderBytes = 14;
constexpr int kMarginPx = 4;

quint32 wordAt(const QByteArray& bytes, int at, int size)
{
    quint32 word = 0;
    for (int i = size - 1; i >= 0; --i)
        word = word << 8 | static_cast<quint8>(bytes[at + i]);
    return word;
}

void putWord(QByteArray& bytes, quint32 word)
{
    for (int i = 0; i < 4; ++i)
        bytes.append(static_cast<char>(word >> (8 * i) & 0xFF));
}

/// A bitmap as drawings store it, with the file header that it lacks; anything else as it is.
QByteArray withFileHeader(const QByteArray& bytes)
{
    if (bytes.size() < kBitmapHeaderBytes || wordAt(bytes, 0, 4) != kBitmapHeaderBytes)
        return bytes;
    const quint32 depth = wordAt(bytes, 14, 2), used = wordAt(bytes, 32, 4);
    const quint32 colors = depth > 8 ? 0 : used ? std::min(used, 256U) : 1U << depth;
    QByteArray file("BM");
    putWord(file, static_cast<quint32>(kFileHeaderBytes + bytes.size()));
    putWord(file, 0);
    putWord(file, kFileHeaderBytes + kBitmapHeaderBytes + 4 * colors);
    return file + bytes;
}

} // namespace

QImage ui::previewImage(std::span<const std::byte> bytes)
{
    QByteArray file = withFileHeader(QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<qsizetype>(bytes.size())));
    QBuffer buffer(&file);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > kMostSidePx || size.height() > kMostSidePx)
        return {};
    return reader.read();
}

CKvPreviewStatic::CKvPreviewStatic(QWidget* parent) : QWidget(parent) {}

void CKvPreviewStatic::SetPicture(const QImage& picture)
{
    m_picture = picture;
    update();
}

bool CKvPreviewStatic::SetPreview(std::span<const std::byte> bytes)
{
    SetPicture(ui::previewImage(bytes));
    return HasPicture();
}

void CKvPreviewStatic::SetHint(const TvString& hint)
{
    m_hint = ui::toQt(hint);
    update();
}

QSize CKvPreviewStatic::sizeHint() const
{
    return {160, 120};
}

void CKvPreviewStatic::paintEvent(QPaintEvent*)
{
    using ui::ColorRole;
    QPainter painter(this);
    painter.fillRect(rect(), ui::color(ColorRole::Base));
    painter.setPen(ui::color(ColorRole::Border));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const QRect room = rect().adjusted(kMarginPx, kMarginPx, -kMarginPx, -kMarginPx);
    if (m_picture.isNull()) {
        painter.setPen(ui::color(ColorRole::DimText));
        painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, m_hint);
        return;
    }
    QRect place(QPoint(), m_picture.size().scaled(room.size(), Qt::KeepAspectRatio));
    place.moveCenter(room.center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, m_picture);
}
