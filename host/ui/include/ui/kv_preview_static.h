#pragma once

#include <cstddef>
#include <span>

#include <QImage>
#include <QWidget>

#include <base/tv_string.h>

namespace ui {

/// The picture in a drawing's stored preview: the bytes of a picture file, or of a bitmap without
/// its file header. Null when they are no picture, or one of unreasonable size.
QImage previewImage(std::span<const std::byte> bytes);

} // namespace ui

/// Shows a picture, as large as it fits, in the middle; without one, a text or nothing.
class CKvPreviewStatic : public QWidget
{
public:
    explicit CKvPreviewStatic(QWidget* parent = nullptr);

    /// A null picture takes the one that is shown away.
    void SetPicture(const QImage& picture);
    /// A drawing's stored preview. False, and nothing shown, when it is no picture.
    bool SetPreview(std::span<const std::byte> bytes);
    bool HasPicture() const { return !m_picture.isNull(); }
    /// Shown in the picture's place.
    void SetHint(const TvString& hint);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_picture;
    QString m_hint;
};
