#include "ed/file_dialog.h"

#include <db/tv_status.h>

CFileDialog::CFileDialog(ed::UserPrompts::FileQuestion question) : m_question(std::move(question))
{
}
CFileDialog::CFileDialog(const CFileDialog& other) = default;
CFileDialog& CFileDialog::operator=(const CFileDialog& other) = default;
CFileDialog::~CFileDialog() = default;

int CFileDialog::DoModal()
{
    constexpr int kOk = 1, kCancel = 2;
    m_paths.clear();
    ed::UserPrompts* prompts = ed::userPrompts();
    return prompts && prompts->askFiles(m_question, m_paths) == TvStatus::Normal ? kOk : kCancel;
}
