#pragma once

#include <ed/user_prompts.h>

/// The program's dialog for files, as an object: what it asks, and what was answered.
class CFileDialog
{
public:
    explicit CFileDialog(ed::UserPrompts::FileQuestion question = {});
    CFileDialog(const CFileDialog& other);
    CFileDialog& operator=(const CFileDialog& other);
    virtual ~CFileDialog();

    /// 1 when the user chose something, 2 when he gave up or nobody can be asked.
    virtual int DoModal();
    /// What was chosen; empty before, and when he gave up.
    const std::vector<TvString>& paths() const { return m_paths; }

private:
    ed::UserPrompts::FileQuestion m_question;
    std::vector<TvString> m_paths;
};
