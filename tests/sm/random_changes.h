#pragma once

#include <rapidcheck/gtest.h>

#include "sheet_set_builder.h"

/// One change to a set, told by three numbers, so that a failing series shrinks well.
struct RandomChange {
    int kind = 0;
    int a = 0;
    int b = 0;
};

inline void showValue(const RandomChange& change, std::ostream& os)
{
    os << "(" << change.kind << ", " << change.a << ", " << change.b << ")";
}

namespace rc {

template <>
struct Arbitrary<RandomChange> {
    static Gen<RandomChange> arbitrary()
    {
        return gen::build<RandomChange>(gen::set(&RandomChange::kind, gen::inRange(0, 30)),
                                        gen::set(&RandomChange::a, gen::inRange(0, 100)),
                                        gen::set(&RandomChange::b, gen::inRange(0, 100)));
    }
};

} // namespace rc

/// Makes changes to one database. Objects that were taken out are remembered, and may come back.
class RandomChanges
{
public:
    explicit RandomChanges(TvSmDatabase* db) : m_db(db) {}

    void make(const std::vector<RandomChange>& changes)
    {
        for (const RandomChange& change : changes)
            make(change);
    }

private:
    template <class T>
    static T* at(const std::vector<T*>& items, int index)
    {
        return items.empty() ? nullptr : items[static_cast<std::size_t>(index) % items.size()];
    }
    /// All objects of a class that stand in the set.
    template <class T>
    std::vector<T*> all() const
    {
        std::vector<T*> found;
        sm::forEachObject(m_db, [&](TvSmPersist& object) {
            if (auto* fits = tvrxCast<T>(&object))
                found.push_back(fits);
        });
        return found;
    }
    static TvString text(int number) { return TvString().format(u"text %d <&\"", number % 7); }
    TvSmSheetSet* set() const { return m_db->getSheetSet(); }

    void make(const RandomChange& change)
    {
        const int a = change.a;
        const int b = change.b;
        switch (change.kind) {
        case 0:
        case 1: return insertNew(a, b);
        case 2:
        case 3: return move(a, b);
        case 4: return remove(a);
        case 5:
        case 6: return bringBack(a, b);
        case 7: return setTexts(a, b);
        case 8: return setSheet(a, b);
        case 9: return setProperty(a, b);
        case 10: return removeProperty(a);
        case 11:
        case 12: return setLayout(a, b);
        case 13: return addView(a, b);
        case 14: return moveView(a, b);
        case 15: return removeView(a);
        case 16: return setCategory(a, b);
        case 17: return addOrRemoveCategory(a, b);
        case 18:
        case 19: return changeCallouts(a, b);
        case 20: return changeSelections(a, b);
        case 21: return changeMembers(a, b);
        case 22: return setReference(a, b);
        case 23: return changeOptions(a, b);
        case 24: return setReferenceTexts(a, b);
        case 25: return setFlags(a, b);
        case 26: return viewMadeBeforehand(a, b);
        case 27: return changeResources(a, b);
        case 28: return setSetTexts(a, b);
        default: m_db->findObject(text(a)); return;
        }
    }

    void insertNew(int a, int b)
    {
        TvSmSubset* parent = at(all<TvSmSubset>(), a);
        TvSmComponent* made = b % 3 ? static_cast<TvSmComponent*>(parent->createSheet(text(b), u""))
                                    : parent->createSubset(text(b), u"d");
        if (!made)
            return;
        if (b % 10 != 9) // one in ten is never put in
            parent->insertComponent(made, at(itemsOf(parent->getSheetEnumerator()), b));
        else
            m_out.push_back(made);
    }
    TvSmComponent* child(int a) const
    {
        std::vector<TvSmComponent*> children;
        for (TvSmComponent* each : all<TvSmComponent>())
            if (each != set() &&
                (each->isA() == TvSmSheet::desc() || each->isA() == TvSmSubset::desc()))
                children.push_back(each);
        return at(children, a);
    }
    void move(int a, int b)
    {
        TvSmSubset* parent = at(all<TvSmSubset>(), b);
        TvSmComponent* moved = child(a);
        TvSmComponent* neighbour = at(itemsOf(parent->getSheetEnumerator()), a + b);
        if (b % 2)
            parent->insertComponent(moved, neighbour);
        else
            parent->insertComponentAfter(moved, b % 8 ? neighbour : nullptr);
    }
    void remove(int a)
    {
        TvSmComponent* gone = child(a);
        if (!gone)
            return;
        auto* parent = tvrxCast<TvSmSubset>(gone->owner());
        if (auto* sheet = tvrxCast<TvSmSheet>(gone))
            parent->removeSheet(sheet);
        else
            parent->removeSubset(tvrxCast<TvSmSubset>(gone));
        m_out.push_back(gone);
    }
    void bringBack(int a, int b)
    {
        TvSmSubset* parent = at(all<TvSmSubset>(), b);
        if (TvSmComponent* back = at(m_out, a)) {
            back->setOwner(parent);
            parent->insertComponent(back, at(itemsOf(parent->getSheetEnumerator()), b));
        }
        if (TvSmSheetView* view = at(m_viewsOut, a))
            if (TvSmSheet* sheet = at(all<TvSmSheet>(), b))
                sheet->getSheetViews()->add(view);
        if (TvSmViewCategory* category = at(m_categoriesOut, a))
            set()->getViewCategories()->add(category, 0);
        if (TvSmTvDbBlockRecordReference* block = at(m_blocksOut, a))
            set()->getCalloutBlocks()->add(block);
    }
    void setTexts(int a, int b)
    {
        TvSmComponent* component = at(all<TvSmComponent>(), a);
        component->setName(b % 5 ? text(b) : TvString());
        component->setDesc(text(a));
    }
    void setSheet(int a, int b)
    {
        if (TvSmSheet* sheet = at(all<TvSmSheet>(), a)) {
            sheet->setTitle(b % 4 ? text(b) : TvString());
            sheet->setNumber(text(a));
            sheet->setSheetText1(text(b));
            sheet->setSheetText4(text(a + b));
            sheet->setExcludeFromPublish(b % 2);
        }
    }
    void setProperty(int a, int b)
    {
        TvSmCustomPropertyBag* bag = at(all<TvSmComponent>(), a)->getCustomProperties();
        if (b % 2) {
            sm::setTextProperty(bag, text(b), text(a), static_cast<unsigned short>(b % 4));
            return;
        }
        auto made = std::make_unique<TvSmCustomPropertyValue>();
        made->initNew(bag, TvString());
        made->setValue(TvVariant(std::int32_t(b)));
        if (bag->setProperty(text(b), made.get()))
            static_cast<void>(made.release());
    }
    void removeProperty(int a)
    {
        for (TvSmComponent* component : all<TvSmComponent>())
            for (const sm::Property& each : sm::propertiesOf(component->getCustomProperties()))
                if (a-- == 0)
                    component->getCustomProperties()->removeProperty(each.name);
    }
    void setLayout(int a, int b)
    {
        TvSmSheet* sheet = at(all<TvSmSheet>(), a);
        if (!sheet)
            return;
        if (b % 3 == 0) {
            m_layoutsOut.push_back(sheet->getLayoutReference());
            sheet->setLayoutReference(nullptr);
        } else if (b % 3 == 1) {
            sheet->setLayoutReference(at(m_layoutsOut, b));
        } else {
            auto made = std::make_unique<TvSmTvDbLayoutReference>();
            made->initNew(sheet, TvString());
            made->setFileName(text(b));
            if (sheet->setLayoutReference(made.get()))
                static_cast<void>(made.release());
        }
    }
    void addView(int a, int b)
    {
        TvSmSheet* sheet = at(all<TvSmSheet>(), a);
        if (!sheet)
            return;
        auto made = std::make_unique<TvSmSheetView>();
        made->initNew(sheet->getSheetViews(), TvString());
        made->setTitle(text(b));
        if (sheet->getSheetViews()->add(made.get()))
            static_cast<void>(made.release());
    }
    void moveView(int a, int b)
    {
        TvSmSheetView* view = at(all<TvSmSheetView>(), a);
        if (view)
            at(all<TvSmSheet>(), b)->getSheetViews()->add(view);
    }
    void removeView(int a)
    {
        TvSmSheetView* view = at(all<TvSmSheetView>(), a);
        if (!view)
            return;
        tvrxCast<TvSmSheetViews>(view->owner())->remove(view);
        m_viewsOut.push_back(view);
    }
    void setCategory(int a, int b)
    {
        if (TvSmSheetView* view = at(all<TvSmSheetView>(), a))
            view->setCategory(b % 4 ? at(all<TvSmViewCategory>(), b) : nullptr);
    }
    void addOrRemoveCategory(int a, int b)
    {
        TvSmViewCategory* category = at(all<TvSmViewCategory>(), a);
        if (b % 2 && category) {
            set()->getViewCategories()->remove(category);
            m_categoriesOut.push_back(category);
            return;
        }
        auto made = std::make_unique<TvSmViewCategory>();
        made->initNew(set()->getViewCategories(), TvString());
        made->setName(b % 3 ? text(b) : TvString());
        if (set()->getViewCategories()->add(made.get(), 0))
            static_cast<void>(made.release());
    }
    void changeCallouts(int a, int b)
    {
        TvSmReferenceCollection* callouts = set()->getCalloutBlocks();
        TvSmViewCategory* category = at(all<TvSmViewCategory>(), a);
        auto* block = tvrxCast<TvSmTvDbBlockRecordReference>(
            static_cast<TvRxObject*>(at(itemsOf(callouts->getEnumerator()), b)));
        if (b % 4 == 0 && block) {
            callouts->remove(block);
            m_blocksOut.push_back(block);
        } else if (b % 4 == 1 && category) {
            category->getCalloutBlocks()->add(block);
        } else if (b % 4 == 2 && category) {
            category->getCalloutBlocks()->remove(block);
        } else {
            TvSmReferenceCollection* list =
                category && a % 3 == 0 ? category->getCalloutBlocks() : callouts;
            auto made = std::make_unique<TvSmTvDbBlockRecordReference>();
            made->initNew(list, TvString());
            made->setName(text(b));
            if (list->add(made.get()))
                static_cast<void>(made.release());
        }
    }
    void changeSelections(int a, int b)
    {
        if (b % 3)
            set()->getSheetSelections()->add(text(a), text(b));
        else
            set()->getSheetSelections()->remove(at(all<TvSmSheetSelection>(), a));
    }
    void changeMembers(int a, int b)
    {
        TvSmSheetSelection* selection = at(all<TvSmSheetSelection>(), a);
        if (!selection)
            return;
        if (b % 3)
            selection->add(child(b));
        else
            selection->remove(at(itemsOf(selection->getEnumerator()), b));
    }
    void setReference(int a, int b)
    {
        TvSmSubset* subset = at(all<TvSmSubset>(), a);
        if (b % 3 == 0) {
            subset->setNewSheetLocation(nullptr);
            set()->setAltPageSetups(nullptr);
            return;
        }
        auto made = std::make_unique<TvSmFileReference>();
        made->initNew(subset, TvString());
        made->setFileName(text(b));
        if (b % 3 == 1 ? subset->setNewSheetLocation(made.get())
                       : set()->setAltPageSetups(made.get()))
            static_cast<void>(made.release());
    }
    void changeOptions(int a, int b)
    {
        TvSmPublishOptions* options = set()->getPublishOptions();
        options->setEplotFormat(a);
        options->setDwfType(b % 2);
        options->setLinesMerge(a % 2);
        options->setDefaultFileName(text(b));
    }
    void setReferenceTexts(int a, int b)
    {
        if (TvSmFileReference* reference = at(all<TvSmFileReference>(), a)) {
            reference->setFileName(text(b));
            if (auto* object = tvrxCast<TvSmDbObjectReference>(reference)) {
                object->setHandle(TvString().format(u"%X", b));
                object->setName(text(a));
            }
        }
    }
    void setFlags(int a, int b)
    {
        TvSmSubset* subset = at(all<TvSmSubset>(), a);
        subset->setPromptForTemplate(b % 2);
        subset->setExcludeFromPublish(b % 3 == 0);
    }
    /// A view with its reference, made and filled before it is put in; sometimes never put in.
    void viewMadeBeforehand(int a, int b)
    {
        TvSmSheet* sheet = at(all<TvSmSheet>(), a);
        if (!sheet)
            return;
        auto made = std::make_unique<TvSmSheetView>();
        made->initNew(sheet->getSheetViews(), TvString());
        auto reference = std::make_unique<TvSmTvDbViewReference>();
        reference->initNew(made.get(), TvString());
        reference->setName(text(b));
        if (made->setViewReference(b % 5 ? reference.get() : at(m_viewReferences, b)) && b % 5)
            m_viewReferences.push_back(reference.release());
        if (b % 4 && sheet->getSheetViews()->add(made.get())) {
            if (b % 3 == 0)
                made->setViewReference(nullptr);
            static_cast<void>(made.release());
        }
    }
    void changeResources(int a, int b)
    {
        TvSmReferenceCollection* list = set()->getResourceLocations();
        if (b % 3 == 0) {
            list->remove(at(itemsOf(list->getEnumerator()), a));
            return;
        }
        auto made = std::make_unique<TvSmFileReference>();
        made->initNew(list, TvString());
        made->setFileName(text(b));
        if (list->add(made.get()))
            static_cast<void>(made.release());
    }
    void setSetTexts(int a, int b)
    {
        set()->setSheetSetText1(text(a));
        set()->setSheetSetText3(text(b));
    }

    TvSmDatabase* m_db;
    std::vector<TvSmComponent*> m_out;
    std::vector<TvSmSheetView*> m_viewsOut;
    std::vector<TvSmViewCategory*> m_categoriesOut;
    std::vector<TvSmTvDbBlockRecordReference*> m_blocksOut;
    std::vector<TvSmTvDbLayoutReference*> m_layoutsOut;
    std::vector<TvSmTvDbViewReference*> m_viewReferences;
};
