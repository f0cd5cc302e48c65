#pragma once

#include <ed/file_dialog.h>

/// The program's file dialog under a name that other modules know. This module uses none.
class __attribute__((visibility("default"))) CAdvancedFileDialog : public CFileDialog
{
public:
    explicit CAdvancedFileDialog(ed::UserPrompts::FileQuestion question = {});
    CAdvancedFileDialog(const CAdvancedFileDialog& other);
    CAdvancedFileDialog& operator=(const CAdvancedFileDialog& other);
    ~CAdvancedFileDialog() override;
};
