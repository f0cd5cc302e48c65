#include "module/c_advanced_file_dialog.h"

CAdvancedFileDialog::CAdvancedFileDialog(ed::UserPrompts::FileQuestion question)
    : CFileDialog(std::move(question))
{
}
CAdvancedFileDialog::CAdvancedFileDialog(const CAdvancedFileDialog& other) = default;
CAdvancedFileDialog& CAdvancedFileDialog::operator=(const CAdvancedFileDialog& other) = default;
CAdvancedFileDialog::~CAdvancedFileDialog() = default;
