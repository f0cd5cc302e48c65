#pragma once

#include <db/tv_status.h>
#include <ed/user_prompts.h>

/// Chooses the files that the test prepared; none: gives up.
class ScriptedFiles : public ed::UserPrompts
{
public:
    ScriptedFiles() { ed::setUserPrompts(this); }
    ~ScriptedFiles() override { ed::setUserPrompts(nullptr); }
    int askText(const TvString&, bool, TvString&) override { return ed::kCancelled; }
    int askFiles(const FileQuestion& question, std::vector<TvString>& out) override
    {
        asked.push_back(question);
        out = files;
        return files.empty() ? ed::kCancelled : int(TvStatus::Normal);
    }
    void print(const TvString&) override {}
    void say(int, const std::vector<TvString>&) override {}

    std::vector<FileQuestion> asked;
    std::vector<TvString> files;
};
