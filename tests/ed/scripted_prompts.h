#pragma once

#include <string>
#include <vector>

#include <ed/user_prompts.h>

/// Answers from a list, and notes what it is asked and told.
class ScriptedPrompts : public ed::UserPrompts
{
public:
    int askText(const TvString& prompt, bool withBlanks, TvString& out) override
    {
        seen.push_back((withBlanks ? "line: " : "word: ") + prompt.utf8());
        if (answers.empty())
            return ed::kCancelled;
        out = answers.front();
        answers.erase(answers.begin());
        return 5100;
    }
    int askFiles(const FileQuestion& question, std::vector<TvString>& out) override
    {
        asked = question;
        out = files;
        return files.empty() ? ed::kCancelled : 5100;
    }
    void print(const TvString& text) override { seen.push_back("print: " + text.utf8()); }
    void say(int text, const std::vector<TvString>& arguments) override
    {
        std::string line = "say " + std::to_string(text);
        for (const TvString& argument : arguments)
            line += " " + argument.utf8();
        seen.push_back(line);
    }
    std::vector<TvString> answers, files;
    FileQuestion asked;
    std::vector<std::string> seen;
};
