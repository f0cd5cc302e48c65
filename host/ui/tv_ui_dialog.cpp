#include "ui/tv_ui_dialog.h"

#include <bit>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QComboBox>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

#include <resources/resource_dialogs.h>
#include <rx/module_loader.h>
#include <rx/resource_module.h>

#include "make_control.h"
#include "ui/main_frame.h"
#include "ui/qt_text.h"
#include "ui/window_state.h"

namespace {

std::function<void(const TvString&)>& helpOpener()
{
    static std::function<void(const TvString&)> opener;
    return opener;
}

QString sample()
{
    return QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
}

} // namespace

namespace ui {

void setHelpOpener(std::function<void(const TvString& topic)> opener)
{
    helpOpener() = std::move(opener);
}

void openHelp(const TvString& topic)
{
    if (helpOpener() && !topic.isEmpty())
        helpOpener()(topic);
}

} // namespace ui

/// The controls of a dialog, and how they follow its size.
struct CTvUiDialog::Controls {
    struct Placed {
        const text::ControlTemplate* row;
        QWidget* window; // owned by the dialog
    };
    text::DialogTemplate plan;
    bool isThere = false; ///< there is a template at all
    bool isMade = false;
    std::vector<Placed> placed;
    std::map<int, QWidget*> byId;
    double unitX = 1, unitY = 1; ///< pixels in a dialog unit

    void measure(const QFontMetrics& font)
    {
        unitX = font.horizontalAdvance(sample()) / double(sample().size()) / 4;
        unitY = font.height() / 8.0;
    }
    QSize size() const { return {qRound(plan.width * unitX), qRound(plan.height * unitY)}; }
    /// The row's rectangle in a dialog that is larger than its plan by @p extra pixels.
    QRect rectOf(const text::ControlTemplate& row, const QSize& extra) const
    {
        QRect rect(qRound(row.x * unitX), qRound(row.y * unitY), qRound(row.width * unitX),
                   qRound(row.height * unitY));
        if (row.style & text::kMovesX)
            rect.translate(extra.width(), 0);
        if (row.style & text::kMovesY)
            rect.translate(0, extra.height());
        if (row.style & text::kGrowsX)
            rect.setWidth(std::max(0, rect.width() + extra.width()));
        if (row.style & text::kGrowsY)
            rect.setHeight(std::max(0, rect.height() + extra.height()));
        return rect;
    }
    void place(const QSize& now) const
    {
        const QSize extra = now - size();
        for (const Placed& one : placed)
            one.window->setGeometry(rectOf(*one.row, extra));
    }
};

namespace {

/// The dialog of the module whose resources are current, else the program's own.
const text::DialogTemplate* currentDialog(int number)
{
    const TvString name = rx::currentResourceName();
    if (rx::ModuleLoader* loader = name.isEmpty() ? nullptr : rx::moduleLoader()) {
        const auto find = std::bit_cast<text::ResourceDialog>(
            loader->symbol(loader->loaded(name), text::kResourceDialogName));
        if (const text::DialogTemplate* plan = find ? find(number) : nullptr)
            return plan;
    }
    return text::findDialog(number);
}

} // namespace

CTvUiDialog::CTvUiDialog(int number, QWidget* parent)
    : QDialog(parent ? parent : ui::dialogParent()), m_controls(std::make_unique<Controls>())
{
    prepare(currentDialog(number));
}

CTvUiDialog::CTvUiDialog(const text::DialogTemplate& plan, QWidget* parent)
    : QDialog(parent ? parent : ui::dialogParent()), m_controls(std::make_unique<Controls>())
{
    prepare(&plan);
}

CTvUiDialog::~CTvUiDialog() = default;

void CTvUiDialog::prepare(const text::DialogTemplate* plan)
{
    m_controls->isThere = plan != nullptr;
    if (!plan)
        return;
    m_controls->plan = *plan;
    m_stateName.format(u"Dialog%d", plan->number);
    setWindowTitle(ui::textOf(plan->title));
}

bool CTvUiDialog::Create()
{
    if (!m_controls->isThere || m_controls->isMade)
        return m_controls->isMade;
    m_controls->isMade = true;
    makeControls();
    scaleToFont();
    resize(m_controls->size());
    if (OnInitDialog())
        for (const Controls::Placed& one : m_controls->placed)
            if (one.window->isEnabled() && !one.window->isHidden() &&
                (one.window->focusPolicy() & Qt::TabFocus)) {
                FocusDlgItem(one.row->id);
                one.window->setFocus(Qt::TabFocusReason);
                break;
            }
    return true;
}

/// Controls that follow one another in the plan belong together: Tab goes along them, a label leads
/// to what stands behind it, radios exclude each other.
void CTvUiDialog::makeControls()
{
    QLabel* label = nullptr;
    QWidget* former = nullptr;
    QButtonGroup* radios = nullptr;
    for (const text::ControlTemplate& row : m_controls->plan.controls) {
        QWidget* control = MakeControl(row, this);
        if (!control)
            control = ui::makeControl(row, this);
        m_controls->placed.push_back({&row, control});
        if (row.id != 0)
            m_controls->byId.emplace(row.id, control);
        if (former)
            setTabOrder(former, control);
        former = control;
        if (label && row.kind != text::Control::Label) {
            label->setBuddy(control);
            control->setAccessibleName(label->text().remove(QLatin1Char('&')));
        }
        label = row.kind == text::Control::Label ? dynamic_cast<QLabel*>(control) : nullptr;
        if (auto* radio = dynamic_cast<QRadioButton*>(control)) {
            if (!radios || (row.style & text::kGroup))
                radios = new QButtonGroup(this); // owned by the dialog
            radios->addButton(radio, row.id);
        }
        if (auto* button = dynamic_cast<QAbstractButton*>(control))
            connect(button, &QAbstractButton::clicked, this, [this, id = row.id] {
                Guarded([&] {
                    if (id == text::kIdOk)
                        OnOK();
                    else if (id == text::kIdCancel)
                        OnCancel();
                    else
                        OnCommand(id);
                });
            });
    }
}

void CTvUiDialog::scaleToFont()
{
    m_controls->measure(fontMetrics());
    if (m_controls->plan.style & text::kFixedSize)
        setFixedSize(m_controls->size());
    else
        setMinimumSize(m_controls->plan.style & text::kChild ? QSize(0, 0) : m_controls->size());
    m_controls->place(size());
}

int CTvUiDialog::DoModal()
{
    if (!Create())
        return kFailed;
    if (const std::optional<int> ended = std::exchange(m_ended, std::nullopt); ended && !m_thrown)
        return *ended; // it found out at the start that there is nothing to ask
    const bool isKept = !(m_controls->plan.style & text::kFixedSize);
    const TvString name = isKept ? m_stateName : TvString();
    ui::restoreWindow(*this, name);
    setModal(true);
    const int result = exec();
    m_ended.reset();
    ui::rememberWindow(*this, name);
    if (m_thrown)
        std::rethrow_exception(std::exchange(m_thrown, nullptr));
    return result;
}

void CTvUiDialog::EndDialog(int result)
{
    m_ended = result;
    done(result);
}

QWidget* CTvUiDialog::GetDlgItem(int id) const
{
    const auto found = m_controls->byId.find(id);
    return found == m_controls->byId.end() ? nullptr : found->second;
}

TvString CTvUiDialog::GetDlgItemText(int id) const
{
    if (const auto* edit = Item<QLineEdit>(id))
        return ui::fromQt(edit->text());
    if (const auto* edit = Item<QPlainTextEdit>(id))
        return ui::fromQt(edit->toPlainText());
    if (const auto* label = Item<QLabel>(id))
        return ui::fromQt(label->text());
    if (const auto* combo = Item<QComboBox>(id))
        return ui::fromQt(combo->currentText());
    if (const auto* button = Item<QAbstractButton>(id))
        return ui::fromQt(button->text());
    return {};
}

void CTvUiDialog::SetDlgItemText(int id, const TvString& text)
{
    const QString words = ui::toQt(text);
    if (auto* edit = Item<QLineEdit>(id))
        edit->setText(words);
    else if (auto* lines = Item<QPlainTextEdit>(id))
        lines->setPlainText(words);
    else if (auto* label = Item<QLabel>(id))
        label->setText(words);
    else if (auto* combo = Item<QComboBox>(id))
        combo->isEditable() ? combo->setEditText(words) : combo->setCurrentText(words);
    else if (auto* button = Item<QAbstractButton>(id))
        button->setText(words);
}

void CTvUiDialog::EnableDlgItem(int id, bool isEnabled)
{
    if (QWidget* control = GetDlgItem(id))
        control->setEnabled(isEnabled);
}

void CTvUiDialog::ShowDlgItem(int id, bool isShown)
{
    if (QWidget* control = GetDlgItem(id))
        control->setVisible(isShown);
}

bool CTvUiDialog::IsDlgButtonChecked(int id) const
{
    const auto* button = Item<QAbstractButton>(id);
    return button && button->isChecked();
}

void CTvUiDialog::CheckDlgButton(int id, bool isChecked)
{
    if (auto* button = Item<QAbstractButton>(id))
        button->setChecked(isChecked);
}

void CTvUiDialog::FocusDlgItem(int id)
{
    QWidget* control = GetDlgItem(id);
    if (!control)
        return;
    control->setFocus();
    if (auto* edit = dynamic_cast<QLineEdit*>(control))
        edit->selectAll();
}

QSize CTvUiDialog::sizeHint() const
{
    return m_controls->isThere ? m_controls->size() : QDialog::sizeHint();
}

void CTvUiDialog::reject()
{
    Guarded([this] { OnCancel(); });
}

bool CTvUiDialog::OnInitDialog()
{
    return true;
}

void CTvUiDialog::OnOK()
{
    EndDialog(text::kIdOk);
}

void CTvUiDialog::OnCancel()
{
    EndDialog(text::kIdCancel);
}

void CTvUiDialog::OnCommand(int) {}

QWidget* CTvUiDialog::MakeControl(const text::ControlTemplate&, QWidget*)
{
    return nullptr;
}

void CTvUiDialog::Guarded(const std::function<void()>& step)
{
    try {
        step();
    } catch (...) {
        // Nothing may be thrown through the loop of events; the first one counts.
        if (!m_thrown)
            m_thrown = std::current_exception();
        done(kFailed);
    }
}

void CTvUiDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    m_controls->place(size());
}

void CTvUiDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (m_controls && m_controls->isMade && event->type() == QEvent::FontChange) {
        const QSize before = m_controls->size();
        scaleToFont();
        resize(size() + m_controls->size() - before);
    }
}

void CTvUiDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F1)
        ui::openHelp(m_helpTopic);
    else
        QDialog::keyPressEvent(event);
}
