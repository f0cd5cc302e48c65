#pragma once

#include <QWidget>

#include <base/tv_string.h>

class CTdUiPaletteSet;

/// One palette of a palette set: a page with a title, which stands on its tab.
class CTdUiPalette : public QWidget
{
public:
    explicit CTdUiPalette(const TvString& title);

    const TvString& GetTitle() const { return m_title; }
    /// Its tab follows.
    void SetTitle(const TvString& title);
    /// The set that holds it; null before AddPalette().
    CTdUiPaletteSet* GetPaletteSet() const { return m_set; }
    /// Whether its page is the one that the set shows.
    bool IsActive() const;

    /// Its page comes up, or goes away behind another one.
    virtual void OnActivated(bool isActive);

private:
    friend class CTdUiPaletteSet;
    TvString m_title;
    CTdUiPaletteSet* m_set = nullptr; // not owned; owns us
};
