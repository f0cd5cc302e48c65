#include <core/sheet_set_attributes.h>

#include <sm/tv_sm_sheet_set.h>

namespace {

void copyTexts(const TvSmSheetSet& from, TvSmSheetSet& to)
{
    TvString text;
    to.setName(from.getName(text));
    to.setDesc(from.getDesc(text));
    to.setSheetSetText1(from.getSheetSetText1(text));
    to.setSheetSetText2(from.getSheetSetText2(text));
    to.setSheetSetText3(from.getSheetSetText3(text));
    to.setSheetSetText4(from.getSheetSetText4(text));
}

/// The reference that the destination has, or one that was made for it; null when that failed.
template <class Reference>
Reference* gotOrMade(TvSmSheetSet& set, Reference* present,
                     bool (TvSmSubset::*put)(Reference* reference))
{
    if (present)
        return present;
    auto made = std::make_unique<Reference>();
    return made->initNew(&set, u"") && (set.*put)(made.get()) ? made.release() : nullptr;
}

void copyNewSheetLocation(const TvSmSheetSet& from, TvSmSheetSet& to)
{
    const TvSmFileReference* source = from.getNewSheetLocation();
    if (!source) {
        to.setNewSheetLocation(nullptr);
        return;
    }
    if (auto* reference = gotOrMade<TvSmFileReference>(to, to.getNewSheetLocation(),
                                                       &TvSmSubset::setNewSheetLocation))
        reference->setFileName(source->getFileName());
}

void copyTemplate(const TvSmSheetSet& from, TvSmSheetSet& to)
{
    const TvSmTvDbLayoutReference* source = from.getDefaultTemplateLayout();
    if (!source) {
        to.setDefaultTemplateLayout(nullptr);
        return;
    }
    if (auto* reference = gotOrMade<TvSmTvDbLayoutReference>(
            to, to.getDefaultTemplateLayout(), &TvSmSubset::setDefaultTemplateLayout)) {
        reference->setName(source->getName());
        reference->setFileName(source->getFileName());
    }
}

void removeWhatIsMissing(const TvSmCustomPropertyBag& from, TvSmCustomPropertyBag& to)
{
    for (const sm::Property& property : sm::propertiesOf(&to))
        if (!from.getProperty(property.name))
            to.removeProperty(property.name);
}

void copyProperties(const TvSmSheetSet& from, TvSmSheetSet& to)
{
    const TvSmCustomPropertyBag* source = from.getCustomProperties();
    TvSmCustomPropertyBag* destination = to.getCustomProperties();
    removeWhatIsMissing(*source, *destination);
    for (const sm::Property& property : sm::propertiesOf(source)) {
        if (!destination->getProperty(property.name) &&
            !sm::setTextProperty(destination, property.name, u"", 0))
            continue;
        TvSmCustomPropertyValue* value = destination->getProperty(property.name);
        TvVariant content;
        property.value->getValue(content);
        value->setValue(content);
        value->setFlags(property.value->getFlags());
    }
}

} // namespace

bool CopySheetSetAttributes(const TvSmSheetSet* source, TvSmSheetSet* destination)
{
    if (!source || !destination)
        return false;
    if (source == destination)
        return true;
    copyTexts(*source, *destination);
    copyNewSheetLocation(*source, *destination);
    copyTemplate(*source, *destination);
    destination->setPromptForTemplate(source->getPromptForTemplate());
    copyProperties(*source, *destination);
    return true;
}
