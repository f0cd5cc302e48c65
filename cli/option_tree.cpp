#include "cli/option_tree.h"

#include <iterator>
#include <sstream>

#include "cli/verbs.h"
#include "option_list.h"

// The verbs and their options, in one place: parsing, help, man page and completion all come from
// here.

namespace cli {

namespace {

// --- what several verbs share

void fileArgument(OptionList& list, TvString& file)
{
    list.file("FILE", file, Word::HelpFile)->required();
}

void handleArgument(OptionList& list, TvString& handle)
{
    list.text("HANDLE", "HANDLE", handle, Word::HelpHandle)->required();
}

void placeOptions(OptionList& list, Place& place)
{
    CLI::Option* before = list.text("--before", "HANDLE", place.before, Word::HelpBefore);
    list.text("--after", "HANDLE", place.after, Word::HelpAfter)->excludes(before);
}

void dryRunOption(OptionList& list, Invocation& into)
{
    list.flag("-n,--dry-run", into.change.dryRun, Word::HelpDryRun);
}

// --- one function for each verb, in the order of the help

void newOptions(OptionList& list, Invocation& into)
{
    list.file("FILE", into.newSet.file, Word::HelpNewFile)->required();
    list.text("--name", "NAME", into.newSet.name, Word::HelpName);
    list.text("--desc", "TEXT", into.newSet.description, Word::HelpDesc);
    list.file("--template", into.newSet.templateFile, Word::HelpTemplate);
    list.file("--from", into.newSet.from, Word::HelpFrom)->type_name("FOLDER");
    list.flag("--subsets", into.newSet.subsets, Word::HelpSubsets);
    CLI::Option* prefix = list.flag("--prefix", into.newSet.prefix, Word::HelpPrefix);
    list.flag("--no-prefix", into.newSet.noPrefix, Word::HelpNoPrefix)->excludes(prefix);
    dryRunOption(list, into);
}

void treeOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.tree.file);
    list.number("--depth", "N", into.tree.depth, Word::HelpDepth);
}

void infoOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.info.file);
}

void subsetAddOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.subsetAdd.file);
    list.text("NAME", "NAME", into.subsetAdd.name, Word::HelpSubsetName)->required();
    list.text("--in", "HANDLE", into.subsetAdd.in, Word::HelpIn);
    placeOptions(list, into.subsetAdd.place);
    dryRunOption(list, into);
}

void sheetImportOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.sheetImport.file);
    list.files("DRAWING", into.sheetImport.drawings, Word::HelpImportDrawings)->required();
    CLI::Option* layout =
        list.repeatedText("--layout", "NAME", into.sheetImport.layouts, Word::HelpImportLayout);
    list.flag("--all", into.sheetImport.all, Word::HelpImportAll)->excludes(layout);
    list.text("--in", "HANDLE", into.sheetImport.in, Word::HelpImportIn);
    list.flag("--no-prefix", into.sheetImport.noPrefix, Word::HelpNoPrefix);
    dryRunOption(list, into);
}

void moveOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.move.file);
    handleArgument(list, into.move.handle);
    list.text("--to", "HANDLE", into.move.to, Word::HelpTo)->required();
    placeOptions(list, into.move.place);
    dryRunOption(list, into);
}

void setOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.set.file);
    handleArgument(list, into.set.handle);
    list.texts("KEY=VALUE", into.set.assignments, Word::HelpAssignments)->required();
    dryRunOption(list, into);
}

void propSetOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.propSet.file);
    handleArgument(list, into.propSet.handle);
    list.texts("NAME=VALUE", into.propSet.assignments, Word::HelpProperties)->required();
    list.choice("--for", "set|sheets", into.propSet.scope, Word::HelpFor);
    dryRunOption(list, into);
}

void propRemoveOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.propRemove.file);
    handleArgument(list, into.propRemove.handle);
    list.texts("NAME", into.propRemove.names, Word::HelpPropertyNames)->required();
    dryRunOption(list, into);
}

void propListOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.propList.file);
    handleArgument(list, into.propList.handle);
}

void removeOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.remove.file);
    handleArgument(list, into.remove.handle);
    dryRunOption(list, into);
}

void sheetRenameOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.sheetRename.file);
    handleArgument(list, into.sheetRename.handle);
    list.text("--number", "NUMBER", into.sheetRename.number, Word::HelpRenameNumber);
    list.text("--title", "TITLE", into.sheetRename.title, Word::HelpRenameTitle);
    list.text("--layout", "NAME", into.sheetRename.layout, Word::HelpRenameLayout);
    list.text("--file", "NAME", into.sheetRename.drawing, Word::HelpRenameFile);
    dryRunOption(list, into);
}

void renumberOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.renumber.file);
    list.text("--in", "HANDLE", into.renumber.in, Word::HelpRenumberIn);
    list.text("--first", "NUMBER", into.renumber.first, Word::HelpFirst);
    list.number("--step", "N", into.renumber.step, Word::HelpStep);
    list.flag("--rename-layouts", into.renumber.renameLayouts, Word::HelpRenameLayouts);
    list.flag("--rename-files", into.renumber.renameFiles, Word::HelpRenameFiles);
    list.flag("--undo", into.renumber.undo, Word::HelpUndo);
    list.flag("--recover", into.renumber.recover, Word::HelpRecover);
    dryRunOption(list, into);
}

void checkOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.check.file);
    list.flag("--drawings", into.check.drawings, Word::HelpDrawings);
}

void publishOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.publish.file);
    list.texts("--select", into.publish.select, Word::HelpSelect)->type_name("HANDLE");
    list.file("--out", into.publish.out, Word::HelpOut);
    list.plain("--format", "pdf|pdf-per-sheet|svg", into.publish.format, Word::HelpFormat);
    list.flag("--reverse", into.publish.reverse, Word::HelpReverse);
    list.text("--page-setup", "NAME", into.publish.pageSetup, Word::HelpPageSetup);
    list.number("--jobs", "N", into.publish.jobs, Word::HelpJobs);
    list.plain("--progress", "auto|plain|json|none", into.publish.progress, Word::HelpProgress);
}

void lockOptions(OptionList& list, Invocation& into)
{
    fileArgument(list, into.lock.file);
}

void sheetNewOptions(OptionList& list, Invocation& into)
{
    SheetNewRequest& sheet = into.sheetNew;
    fileArgument(list, sheet.file);
    list.text("--title", "TEXT", sheet.title, Word::HelpSheetTitle)->required();
    list.text("--number", "TEXT", sheet.number, Word::HelpSheetNumber);
    list.text("--in", "HANDLE", sheet.in, Word::HelpSheetIn);
    placeOptions(list, sheet.place);
    list.file("--template", sheet.templateFile, Word::HelpSheetTemplate);
    list.text("--layout", "NAME", sheet.templateLayout, Word::HelpSheetTemplateLayout);
    list.text("--file", "NAME", sheet.fileName, Word::HelpSheetFile);
    list.file("--folder", sheet.folder, Word::HelpSheetFolder)->type_name("DIR");
    dryRunOption(list, into);
}

void drawingArgument(OptionList& list, TvString& file)
{
    list.file("FILE", file, Word::HelpDrawingFile)->required();
}

void drawingInfoOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.drawingInfo.file);
}

void drawingCheckOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.drawingCheck.file);
}

void drawingCopyOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.drawingCopy.file);
    list.file("NEWFILE", into.drawingCopy.to, Word::HelpCopyTo)->required();
    list.plain("--as", "VERSION", into.drawingCopy.as, Word::HelpCopyAs);
    list.flag("--overwrite", into.drawingCopy.overwrite, Word::HelpOverwrite);
    dryRunOption(list, into);
}

void drawingNewOptions(OptionList& list, Invocation& into)
{
    list.file("FILE", into.drawingNew.file, Word::HelpNewFile)->required();
    list.plain("--as", "VERSION", into.drawingNew.as, Word::HelpNewAs);
    dryRunOption(list, into);
}

void layoutListOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.layoutList.file);
}

void layoutAddOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.layoutAdd.file);
    list.text("NAME", "NAME", into.layoutAdd.name, Word::HelpLayoutAdd)->required();
    dryRunOption(list, into);
}

void layoutRenameOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.layoutRename.file);
    list.text("NAME", "NAME", into.layoutRename.name, Word::HelpLayoutOld)->required();
    list.text("NEWNAME", "NEWNAME", into.layoutRename.newName, Word::HelpLayoutNew)->required();
    dryRunOption(list, into);
}

void layoutRemoveOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.layoutRemove.file);
    list.text("NAME", "NAME", into.layoutRemove.name, Word::HelpLayoutRemove)->required();
    dryRunOption(list, into);
}

void sheetDataShowOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.sheetDataShow.file);
}

void sheetDataWriteOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.sheetDataWrite.file);
    list.file("--set", into.sheetDataWrite.set, Word::HelpSheetSet)->required();
    CLI::Option* name =
        list.text("--layout", "NAME", into.sheetDataWrite.layout, Word::HelpSheetLayout);
    list.text("--handle", "HANDLE", into.sheetDataWrite.handle, Word::HelpSheetHandle)
        ->excludes(name);
    dryRunOption(list, into);
}

void sheetDataRemoveOptions(OptionList& list, Invocation& into)
{
    drawingArgument(list, into.sheetDataRemove.file);
    dryRunOption(list, into);
}

void helpOptions(OptionList& list, Invocation& into)
{
    list.plains("VERB", into.help.verb, Word::HelpVerb);
    list.flag("--man", into.help.manual, Word::HelpMan)->group(OptionList::kHiddenGroup);
}

void completionOptions(OptionList& list, Invocation& into)
{
    list.plain("SHELL", "SHELL", into.completion.shell, Word::HelpShell)->required();
}

/// Gives a verb its request, with the options that all changes share.
template <auto Request>
Outcome runRead(Invocation& invocation, Console& console)
{
    return run(invocation.*Request, console);
}

template <auto Request>
Outcome runChange(Invocation& invocation, Console& console)
{
    (invocation.*Request).change = invocation.change;
    return run(invocation.*Request, console);
}

using I = Invocation;

// clang-format off
constexpr Verb kVerbs[] = {
    {"new",                    Word::SumNew,            Word::DetNew,            Word::ExNew,            newOptions,               runChange<&I::newSet>},
    {"tree",                   Word::SumTree,           Word::DetTree,           Word::ExTree,           treeOptions,              runRead<&I::tree>},
    {"info",                   Word::SumInfo,           Word::DetInfo,           Word::ExInfo,           infoOptions,              runRead<&I::info>},
    {"subset add",             Word::SumSubsetAdd,      Word::DetSubsetAdd,      Word::ExSubsetAdd,      subsetAddOptions,         runChange<&I::subsetAdd>},
    {"sheet new",              Word::SumSheetNew,       Word::DetSheetNew,       Word::ExSheetNew,       sheetNewOptions,          runChange<&I::sheetNew>},
    {"sheet import",           Word::SumSheetImport,    Word::DetSheetImport,    Word::ExSheetImport,    sheetImportOptions,       runChange<&I::sheetImport>},
    {"sheet rename",           Word::SumSheetRename,    Word::DetSheetRename,    Word::ExSheetRename,    sheetRenameOptions,       runChange<&I::sheetRename>},
    {"renumber",               Word::SumRenumber,       Word::DetRenumber,       Word::ExRenumber,       renumberOptions,          runChange<&I::renumber>},
    {"move",                   Word::SumMove,           Word::DetMove,           Word::ExMove,           moveOptions,              runChange<&I::move>},
    {"set",                    Word::SumSet,            Word::DetSet,            Word::ExSet,            setOptions,               runChange<&I::set>},
    {"prop set",               Word::SumPropSet,        Word::DetPropSet,        Word::ExPropSet,        propSetOptions,           runChange<&I::propSet>},
    {"prop remove",            Word::SumPropRemove,     Word::DetPropRemove,     Word::ExPropRemove,     propRemoveOptions,        runChange<&I::propRemove>},
    {"prop list",              Word::SumPropList,       Word::DetPropList,       Word::ExPropList,       propListOptions,          runRead<&I::propList>},
    {"remove",                 Word::SumRemove,         Word::DetRemove,         Word::ExRemove,         removeOptions,            runChange<&I::remove>},
    {"check",                  Word::SumCheck,          Word::DetCheck,          Word::ExCheck,          checkOptions,             runRead<&I::check>},
    {"publish",                Word::SumPublish,        Word::DetPublish,        Word::ExPublish,        publishOptions,           runRead<&I::publish>},
    {"lock",                   Word::SumLock,           Word::DetLock,           Word::ExLock,           lockOptions,              runRead<&I::lock>},
    {"drawing info",           Word::SumDrawingInfo,    Word::DetDrawingInfo,    Word::ExDrawingInfo,    drawingInfoOptions,       runRead<&I::drawingInfo>},
    {"drawing check",          Word::SumDrawingCheck,   Word::DetDrawingCheck,   Word::ExDrawingCheck,   drawingCheckOptions,      runRead<&I::drawingCheck>},
    {"drawing copy",           Word::SumDrawingCopy,    Word::DetDrawingCopy,    Word::ExDrawingCopy,    drawingCopyOptions,       runChange<&I::drawingCopy>},
    {"drawing new",            Word::SumDrawingNew,     Word::DetDrawingNew,     Word::ExDrawingNew,     drawingNewOptions,        runChange<&I::drawingNew>},
    {"drawing layout list",    Word::SumLayoutList,     Word::DetLayoutList,     Word::ExLayoutList,     layoutListOptions,        runRead<&I::layoutList>},
    {"drawing layout add",     Word::SumLayoutAdd,      Word::DetLayoutAdd,      Word::ExLayoutAdd,      layoutAddOptions,         runChange<&I::layoutAdd>},
    {"drawing layout rename",  Word::SumLayoutRename,   Word::DetLayoutRename,   Word::ExLayoutRename,   layoutRenameOptions,      runChange<&I::layoutRename>},
    {"drawing layout remove",  Word::SumLayoutRemove,   Word::DetLayoutRemove,   Word::ExLayoutRemove,   layoutRemoveOptions,      runChange<&I::layoutRemove>},
    {"drawing sheetdata show", Word::SumSheetDataShow,  Word::DetSheetDataShow,  Word::ExSheetDataShow,  sheetDataShowOptions,     runRead<&I::sheetDataShow>},
    {"drawing sheetdata write",Word::SumSheetDataWrite, Word::DetSheetDataWrite, Word::ExSheetDataWrite, sheetDataWriteOptions,    runChange<&I::sheetDataWrite>},
    {"drawing sheetdata remove",Word::SumSheetDataRemove,Word::DetSheetDataRemove,Word::ExSheetDataRemove,sheetDataRemoveOptions,   runChange<&I::sheetDataRemove>},
    {"help",                   Word::SumHelp,           Word::DetHelp,           Word::ExHelp,           helpOptions,              runRead<&I::help>},
    {"completion",             Word::SumCompletion,     Word::DetCompletion,     Word::ExCompletion,     completionOptions,        runRead<&I::completion>},
};
// clang-format on

/// What every verb takes, and the tool before a verb as well.
void commonOptions(OptionList& list, Invocation& into)
{
    list.beginCommon();
    list.flag("--json", into.json, Word::HelpJson);
    list.seconds("--lock-wait", into.change.lockWait, Word::HelpLockWait);
    list.plain("-C", "DIR", into.folder, Word::HelpFolder);
    list.flag("-q,--quiet", into.quiet, Word::HelpQuiet);
}

void helpFlags(CLI::App& app)
{
    app.set_help_flag("-h", words(Word::HelpShort).utf8())->group(OptionList::kCommonGroup);
    app.set_help_all_flag("--help", words(Word::HelpLong).utf8())->group(OptionList::kCommonGroup);
}

void buildVerb(CLI::App& app, const Verb& verb, Invocation& into)
{
    OptionList list(app);
    helpFlags(app);
    verb.options(list, into);
    commonOptions(list, into);
}

void buildTop(CLI::App& app, Invocation& into)
{
    OptionList list(app);
    helpFlags(app);
    commonOptions(list, into);
    list.flag("--version", into.version, Word::HelpVersion);
    app.prefix_command();
}

// --- reading the tree

OptionInfo infoOf(const CLI::Option& option)
{
    OptionInfo info;
    for (const std::string& name : option.get_snames())
        info.spellings.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        info.spellings.push_back("--" + name);
    info.names = joined(info.spellings, ", ");
    const bool isFlag = option.get_items_expected_max() == 0;
    if (!isFlag)
        info.value = info.names.empty() ? option.get_name(true) : option.get_type_name();
    info.help = option.get_description();
    info.isRequired = option.get_required();
    info.isRepeated = option.get_items_expected_max() > 1;
    info.isCommon = option.get_group() == OptionList::kCommonGroup;
    return info;
}

// --- wrong usage

bool isOption(const std::string& argument)
{
    return argument.size() > 1 && argument[0] == '-' && argument != "--";
}

TvString shown(const std::string& bytes)
{
    return TvString(std::string_view(bytes));
}

/// Arguments that nobody took.
[[noreturn]] void refuseExtra(const CLI::App& app, const std::string& extra)
{
    const std::string plain = extra[0] == OptionList::kShield ? extra.substr(1) : extra;
    if (!isOption(extra))
        refuseUsage(Word::TooManyArguments, shown(plain));
    std::vector<std::string> known;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames())
            known.push_back("--" + name);
    const std::string name = plain.substr(0, plain.find('='));
    const std::string near = nearest(name, known);
    if (near.empty())
        refuseUsage(Word::UnknownOption, shown(name));
    refuseUsage(Word::UnknownOptionNear, shown(name), shown(near));
}

void refuseExtras(const CLI::App& app)
{
    for (const std::string& extra : app.remaining())
        if (extra != "--")
            refuseExtra(app, extra);
}

/// Puts what CLI11 found wrong into our words.
[[noreturn]] void refuseParse(const CLI::App& app, const CLI::ParseError& error)
{
    refuseExtras(app);
    for (const CLI::Option* option : app.get_options()) {
        for (const CLI::Option* other : option->get_excludes())
            if (option->count() > 0 && other->count() > 0)
                refuseUsage(Word::OptionsExclude, shown(option->get_name()),
                            shown(other->get_name()));
        if (option->get_required() && option->count() == 0)
            refuseUsage(
                Word::ArgumentMissing,
                shown(option->nonpositional() ? option->get_name() : option->get_name(true)));
    }
    const std::string what = error.what();
    const std::string name = what.substr(0, what.find(':'));
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ArgumentMismatch))
        refuseUsage(Word::OptionValue, shown(name));
    refuseUsage(Word::CannotParse, shown(what));
}

std::vector<std::string> shieldedReversed(std::span<const std::string> arguments)
{
    std::vector<std::string> out;
    bool isRest = false; // behind "--" all are arguments
    for (const std::string& argument : arguments) {
        const bool keep = isRest ? false : isOption(argument) || argument == "--";
        out.push_back(keep ? argument : OptionList::kShield + argument);
        isRest = isRest || argument == "--";
    }
    std::reverse(out.begin(), out.end());
    return out;
}

template <class Check>
Parsed parse(CLI::App& app, std::span<const std::string> arguments, Check&& check)
{
    std::vector<std::string> list = shieldedReversed(arguments);
    try {
        app.parse(list);
    } catch (const CLI::CallForAllHelp&) {
        return Parsed::LongHelp;
    } catch (const CLI::CallForHelp&) {
        return Parsed::ShortHelp;
    } catch (const CLI::ParseError& error) {
        refuseParse(app, error);
    }
    check();
    return Parsed::Ready;
}

/// Whether @p name begins with the first @p count words of @p typed.
bool beginsWith(const std::vector<std::string>& name, std::span<const std::string> typed,
                std::size_t count)
{
    return count <= name.size() && count <= typed.size() &&
           std::equal(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(count),
                      typed.begin());
}

} // namespace

std::string joined(std::span<const std::string> parts, const char* separator)
{
    std::string out;
    for (const std::string& part : parts)
        out += (out.empty() ? "" : separator) + part;
    return out;
}

std::vector<std::string> wordsOf(const Verb& verb)
{
    std::istringstream name(verb.name);
    return {std::istream_iterator<std::string>(name), {}};
}

std::span<const Verb> verbs()
{
    return kVerbs;
}

const Verb* findVerb(std::span<const std::string> typed)
{
    for (const Verb& verb : kVerbs) {
        const std::vector<std::string> name = wordsOf(verb);
        if (beginsWith(name, typed, name.size()))
            return &verb;
    }
    return nullptr;
}

std::size_t groupWords(std::span<const std::string> typed)
{
    std::size_t most = 0;
    for (const Verb& verb : kVerbs) {
        const std::vector<std::string> name = wordsOf(verb);
        while (most + 1 < name.size() && beginsWith(name, typed, most + 1))
            ++most;
    }
    return most;
}

std::vector<std::string> nextWords(std::span<const std::string> group)
{
    std::vector<std::string> words;
    for (const Verb& verb : kVerbs) {
        const std::vector<std::string> name = wordsOf(verb);
        const bool isIn = name.size() > group.size() && beginsWith(name, group, group.size());
        if (isIn && (words.empty() || words.back() != name[group.size()]))
            words.push_back(name[group.size()]);
    }
    return words;
}

std::vector<OptionInfo> optionsOf(const Verb* verb)
{
    CLI::App app;
    Invocation unused;
    if (verb)
        buildVerb(app, *verb, unused);
    else
        buildTop(app, unused);
    std::vector<OptionInfo> own;
    std::vector<OptionInfo> common;
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_group() == OptionList::kHiddenGroup)
            continue;
        OptionInfo info = infoOf(*option);
        (info.isCommon ? common : own).push_back(std::move(info));
    }
    own.insert(own.end(), common.begin(), common.end());
    return own;
}

Parsed parseBeforeVerb(std::span<const std::string> arguments, Invocation& into,
                       std::vector<std::string>& rest)
{
    CLI::App app;
    buildTop(app, into);
    const Parsed parsed = parse(app, arguments, [] {});
    for (const std::string& argument : app.remaining())
        rest.push_back(!argument.empty() && argument[0] == OptionList::kShield ? argument.substr(1)
                                                                               : argument);
    if (!rest.empty() && rest.front() == "--")
        rest.erase(rest.begin());
    else if (!rest.empty() && isOption(rest.front()))
        refuseExtra(app, rest.front());
    return parsed;
}

Parsed parseVerb(const Verb& verb, std::span<const std::string> arguments, Invocation& into)
{
    CLI::App app;
    app.allow_extras();
    buildVerb(app, verb, into);
    return parse(app, arguments, [&] { refuseExtras(app); });
}

} // namespace cli
