#pragma once

#include "scripted_prompts.h"

/// Answers the program's questions while it lives.
class AnsweredPrompts : public ScriptedPrompts
{
public:
    AnsweredPrompts() { ed::setUserPrompts(this); }
    ~AnsweredPrompts() override { ed::setUserPrompts(nullptr); }
};
