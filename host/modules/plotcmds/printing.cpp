#include "printing.h"

#include <QComboBox>
#include <QIntValidator>
#include <QLineEdit>
#include <QProcess>

#include <unistd.h>

#include <base/kv_file_system.h>
#include <base/user_folders.h>
#include <resources/texts.h>
#include <ui/qt_text.h>
#include <ui/tv_ui_dialog.h>

#include "plotcmds_ids.h"

namespace plotcmds {

namespace {

constexpr int kAskMs = 2000, kSendMs = 30'000;
constexpr int kMostCopies = 99;

class PrintDialog : public CTvUiDialog
{
public:
    enum Control : int { kPrinter = 10, kCopies = 11 };

    explicit PrintDialog(const std::vector<TvString>& printers)
        : CTvUiDialog(kPrintDialog), m_printers(printers)
    {
    }
    const PrintChoice& choice() const { return m_choice; }

protected:
    bool OnInitDialog() override
    {
        if (auto* box = Item<QComboBox>(kPrinter))
            for (const TvString& printer : m_printers)
                box->addItem(ui::toQt(printer));
        if (auto* copies = Item<QLineEdit>(kCopies)) {
            copies->setText(QStringLiteral("1"));
            copies->setValidator(new QIntValidator(1, kMostCopies, copies)); // owned by the edit
        }
        return true;
    }
    void OnOK() override
    {
        const auto* copies = Item<QLineEdit>(kCopies);
        if (!copies || !copies->hasAcceptableInput()) {
            FocusDlgItem(kCopies);
            return;
        }
        m_choice.printer = GetDlgItemText(kPrinter);
        m_choice.copies = copies->text().toInt();
        EndDialog(text::kIdOk);
    }

private:
    const std::vector<TvString>& m_printers;
    PrintChoice m_choice;
};

} // namespace

std::vector<TvString> printersOfMachine()
{
    std::vector<TvString> printers;
    QProcess service;
    service.start(QStringLiteral("lpstat"), {QStringLiteral("-e")});
    if (!service.waitForFinished(kAskMs) || service.exitCode() != 0) {
        service.kill();
        service.waitForFinished(kAskMs);
        return printers;
    }
    for (const QByteArray& line : service.readAllStandardOutput().split('\n'))
        if (const QByteArray name = line.trimmed(); !name.isEmpty())
            printers.emplace_back(
                std::string_view(name.constData(), static_cast<std::size_t>(name.size())));
    return printers;
}

std::optional<PrintChoice> askPrinter(const std::vector<TvString>& printers)
{
    PrintDialog dialog(printers);
    return dialog.DoModal() == text::kIdOk ? std::optional(dialog.choice()) : std::nullopt;
}

TvString temporaryPdf()
{
    static int count = 0;
    const TvString folder = base::cacheFolder();
    KvFileSystem::createDirectory(folder);
    return base::PathRules::native().join(
        folder,
        TvString().format(TvString(u"print-%d-%d.pdf"), static_cast<int>(getpid()), ++count));
}

TvString printFile(const TvString& path, const PrintChoice& choice, const TvString& title)
{
    QStringList words{QStringLiteral("-d"), ui::toQt(choice.printer), QStringLiteral("-n"),
                      QString::number(choice.copies)};
    if (!title.isEmpty())
        words << QStringLiteral("-t") << ui::toQt(title);
    words << QStringLiteral("--") << ui::toQt(path);
    QProcess service;
    service.setProcessChannelMode(QProcess::MergedChannels);
    service.start(QStringLiteral("lp"), words);
    const bool isSent = service.waitForFinished(kSendMs) && service.exitCode() == 0;
    if (!isSent)
        service.kill();
    KvFileSystem::deleteFile(path); // the service has a copy
    if (isSent)
        return TvString().format(TvString(text::find(kSentTo)), choice.printer);
    return TvString().format(TvString(text::find(kNotPrinted)), choice.printer,
                             ui::fromQt(QString::fromUtf8(service.readAll()).trimmed()));
}

} // namespace plotcmds
