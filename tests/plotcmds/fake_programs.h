#pragma once

#include <filesystem>

#include <QByteArray>

#include "temp_folder.h"

/// Programs of the print service that stand before the machine's own, while it lives.
class FakePrograms
{
public:
    FakePrograms() : m_path(qgetenv("PATH")) {}
    ~FakePrograms() { qputenv("PATH", m_path); }
    FakePrograms(const FakePrograms&) = delete;
    FakePrograms& operator=(const FakePrograms&) = delete;

    /// @param script  lines for a shell.
    void add(const char* name, const std::string& script)
    {
        m_folder.write(name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(m_folder.path() / name, std::filesystem::perms::owner_all);
        qputenv("PATH", QByteArray((m_folder.path().string() + ":").c_str()) + m_path);
    }

private:
    QByteArray m_path;
    TempFolder m_folder;
};
