#include "publish_windows/tarv_dwf_publish_options_dialg.h"

#include <QLabel>

#include <publish/publish_option_rows.h>
#include <sm/tv_sm_database.h>
#include <ui/icon.h>
#include <ui/property_grid.h>
#include <ui/qt_text.h>

namespace {

constexpr int kPicturePx = 32;

} // namespace

CTarvDWFPublishOptionsDialg::CTarvDWFPublishOptionsDialg(QWidget* parent, TvSmDatabase* database,
                                                         TvSmPublishOptions* options)
    : CTvUiDialog(kNumber, parent), m_database(*database), m_options(*options)
{
    SetHelpTopic(u"SHEETSET_DIA02");
}

QWidget* CTarvDWFPublishOptionsDialg::MakeControl(const text::ControlTemplate& row, QWidget* parent)
{
    if (row.id == kPicture)
        return new QLabel(parent);
    if (row.id != kInspector)
        return nullptr;
    m_inspector = new ui::PropertyGrid(parent);
    m_inspector->setObjectName(QStringLiteral("KvPropInspector"));
    m_inspector->setAccessibleName(windowTitle());
    return m_inspector;
}

bool CTarvDWFPublishOptionsDialg::OnInitDialog()
{
    Item<QLabel>(kPicture)->setPixmap(
        ui::icon(TvString(u"publish")).pixmap(QSize(kPicturePx, kPicturePx)));
    SetDlgItemText(kSetName, m_database.getSheetSet()->getName());
    publish::nameDefaultFile(m_database, m_options);
    m_inspector->setRows(publish::publishOptionRows(m_options));
    return CTvUiDialog::OnInitDialog();
}

void CTarvDWFPublishOptionsDialg::OnOK()
{
    if (const auto problem = publish::problemOf(m_options))
        tvrxShowMessage(*problem);
    else
        CTvUiDialog::OnOK();
}
