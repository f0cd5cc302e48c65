#include "operations_windows/tarv_text_length_dlg.h"

#include <QPainter>

#include <ui/qt_text.h>
#include <ui/theme.h>

namespace {

constexpr int kPanel = 10; // id

class PaintedPanel : public QWidget
{
public:
    PaintedPanel(const QString& words, QWidget* parent) : QWidget(parent), m_words(words)
    {
        setAccessibleName(words);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setPen(ui::color(ui::ColorRole::Border));
        painter.setBrush(ui::color(ui::ColorRole::Base));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        painter.setPen(ui::color(ui::ColorRole::Text));
        const int margin = fontMetrics().averageCharWidth();
        painter.drawText(rect().adjusted(margin, 0, -margin, 0),
                         static_cast<int>(Qt::AlignCenter | Qt::TextWordWrap), m_words);
    }

private:
    const QString m_words;
};

} // namespace

QWidget* CTarvTextLengthDlg::MakeControl(const text::ControlTemplate& row, QWidget* parent)
{
    if (row.id == kPanel)
        return new PaintedPanel(ui::textOf(row.text), parent);
    return CTvUiDialog::MakeControl(row, parent);
}
