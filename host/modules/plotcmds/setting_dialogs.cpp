#include <cmath>

#include <QComboBox>
#include <QDoubleValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

#include <resources/texts.h>
#include <ui/qt_text.h>

#include "dialogs.h"
#include "plotcmds_ids.h"

namespace plotcmds {

namespace {

constexpr bool plot::Stamp::*kParts[] = {
    &plot::Stamp::hasSetName, &plot::Stamp::hasNumber, &plot::Stamp::hasTitle,
    &plot::Stamp::hasDrawing, &plot::Stamp::hasLayout, &plot::Stamp::hasDate,
};
constexpr int kCorners = 4;
constexpr double kLeastMm = 0.5, kMostMm = 20;

TvString wording(int number)
{
    return TvString(text::find(number));
}

} // namespace

// The stamp

StampDialog::StampDialog(const plot::Stamp& stamp) : CTvUiDialog(kStampDialog), m_stamp(stamp) {}

bool StampDialog::OnInitDialog()
{
    int id = kFirstPart;
    for (const auto part : kParts)
        CheckDlgButton(id++, m_stamp.*part);
    SetDlgItemText(kNote, m_stamp.note);
    if (auto* box = Item<QComboBox>(kCorner)) {
        for (int i = 0; i < kCorners; ++i)
            box->addItem(ui::textOf(kFirstCorner + i));
        box->setCurrentIndex(static_cast<int>(m_stamp.corner));
    }
    if (auto* height = Item<QLineEdit>(kHeight)) {
        auto* numbers = new QDoubleValidator(kLeastMm, kMostMm, 2, height); // owned by the edit
        numbers->setLocale(QLocale::c());
        height->setValidator(numbers);
        height->setText(QString::number(m_stamp.heightMm));
    }
    if (auto* note = Item<QLineEdit>(kNote))
        connect(note, &QLineEdit::textChanged, this, [this] { showSample(); });
    showSample();
    return true;
}

bool StampDialog::read()
{
    int id = kFirstPart;
    for (const auto part : kParts)
        m_stamp.*part = IsDlgButtonChecked(id++);
    m_stamp.note = GetDlgItemText(kNote);
    if (const auto* box = Item<QComboBox>(kCorner))
        m_stamp.corner = static_cast<plot::Stamp::Corner>(std::max(box->currentIndex(), 0));
    const auto* height = Item<QLineEdit>(kHeight);
    if (!height || !height->hasAcceptableInput())
        return false;
    m_stamp.heightMm = height->text().toDouble();
    return true;
}

void StampDialog::showSample()
{
    read();
    const plot::StampFacts facts{u"Lake House", u"A-101",       u"Ground Floor",
                                 u"plans.dwg",  u"Ground 1:50", u"2026-03-31"};
    const TvString line = plot::stampText(m_stamp, facts);
    SetDlgItemText(kSample,
                   TvString().format(wording(kExample), line.isEmpty() ? wording(kNothing) : line));
}

void StampDialog::OnCommand(int)
{
    showSample();
}

void StampDialog::OnOK()
{
    if (!read()) {
        FocusDlgItem(kHeight);
        return;
    }
    EndDialog(text::kIdOk);
}

// Page setups

TvString describe(const plot::PageSetup& setup)
{
    TvString all, line;
    const auto add = [&all](const TvString& more) {
        all += more.view();
        all += u'\n';
    };
    const auto orNone = [](const TvString& name) { return name.isEmpty() ? wording(kNone) : name; };
    add(line.format(wording(kPaperLine), orNone(setup.paperName),
                    static_cast<int>(std::lround(setup.uprightWidthMm())),
                    static_cast<int>(std::lround(setup.uprightHeightMm()))));
    add(line.format(wording(kPrinterLine), orNone(setup.printer)));
    TvString area = wording(kAreaDisplay + static_cast<int>(setup.area));
    if (setup.area == TvDbPlotSettings::kView)
        area.format(wording(kAreaView), setup.viewName);
    add(line.format(wording(kAreaLine), area));
    add(setup.fits ? wording(kFits) : line.format(wording(kScaleLine), setup.mmPerUnit()));
    add(line.format(wording(kStyleLine), orNone(setup.usesStyles ? setup.styleTable : TvString())));
    return all;
}

PageSetupDialog::PageSetupDialog(std::vector<plot::PageSetup> setups, const TvString& name,
                                 bool isOpen)
    : CTvUiDialog(kPageSetupDialog), m_setups(std::move(setups)), m_name(name), m_isOpen(isOpen)
{
}

bool PageSetupDialog::OnInitDialog()
{
    setWindowTitle(ui::toQt(TvString().format(wording(kSetupsOf), m_name).view()));
    if (auto* note = Item<QLabel>(kNote)) {
        note->setWordWrap(true);
        note->setText(m_setups.empty() ? ui::textOf(kNoSetups)
                      : m_isOpen       ? ui::textOf(kIsOpen)
                                       : QString());
    }
    if (auto* details = Item<QLabel>(kDetails)) {
        details->setAlignment(Qt::AlignTop | Qt::AlignLeft);
        details->setWordWrap(true);
        details->setTextFormat(Qt::PlainText);
    }
    if (auto* list = Item<QListWidget>(kSetups)) {
        for (const plot::PageSetup& setup : m_setups)
            list->addItem(ui::toQt(setup.name));
        connect(list, &QListWidget::currentRowChanged, this, [this](int row) { showDetails(row); });
        list->setCurrentRow(0);
    }
    return true;
}

void PageSetupDialog::showDetails(int row)
{
    if (row >= 0 && static_cast<std::size_t>(row) < m_setups.size())
        SetDlgItemText(kDetails, describe(m_setups[static_cast<std::size_t>(row)]));
}

// PDF

PdfOptionsDialog::PdfOptionsDialog(const plot::PdfOptions& options)
    : CTvUiDialog(kPdfOptionsDialog), m_options(options)
{
}

bool PdfOptionsDialog::OnInitDialog()
{
    CheckDlgButton(kLayers, m_options.hasLayers);
    CheckDlgButton(kOutline, m_options.hasOutline);
    CheckDlgButton(kText, m_options.hasText);
    CheckDlgButton(kBlack, m_options.isMonochrome);
    CheckDlgButton(kMixed, m_options.mergesLines);
    return true;
}

void PdfOptionsDialog::OnOK()
{
    m_options.hasLayers = IsDlgButtonChecked(kLayers);
    m_options.hasOutline = IsDlgButtonChecked(kOutline);
    m_options.hasText = IsDlgButtonChecked(kText);
    m_options.isMonochrome = IsDlgButtonChecked(kBlack);
    m_options.mergesLines = IsDlgButtonChecked(kMixed);
    EndDialog(text::kIdOk);
}

} // namespace plotcmds
