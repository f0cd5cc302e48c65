#pragma once

#include <functional>
#include <vector>

#include <sm/tv_sm_events.h>

/// Writes down what it hears.
class EventRecorder : public TvSmEvents
{
public:
    void onEvent(int code, TvSmPersist* object) override
    {
        codes.push_back(code);
        objects.push_back(object);
        if (reaction)
            reaction(code);
    }
    std::vector<int> codes;
    std::vector<TvSmPersist*> objects;
    std::function<void(int code)> reaction;
};
