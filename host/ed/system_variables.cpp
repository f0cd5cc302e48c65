#include "ed/system_variables.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

#include <base/tarvik_config.h>
#include <db/record_editor.h>
#include <db/tv_db_database.h>
#include <db/tv_db_host_application_services.h>

#include "derived_variables.h"
#include "ed/tv_editor.h"
#include "sheet_set_variables.h"

namespace ed {

namespace {

using Kind = VariableKind;
using Home = VariableHome;

constexpr int kConfigScope = 1;
constexpr TvChar kConfigFolder[] = u"SystemVariables\\";

struct Row {
    const TvChar* name;
    Kind kind;
    Home home;
    double standard;  ///< where it was never set; a drawing has its own
    double low, high; ///< equal: any value
    bool isReadOnly = false;
};

// By name. What is in a drawing has the name of the header's field.
constexpr Row kRows[] = {
    {u"ANGBASE", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"ANGDIR", Kind::Short, Home::Drawing, 0, 0, 1},
    {u"ATTMODE", Kind::Short, Home::Drawing, 1, 0, 2},
    {u"ATTREQ", Kind::Short, Home::User, 1, 0, 1},
    {u"AUNITS", Kind::Short, Home::Drawing, 0, 0, 4},
    {u"AUPREC", Kind::Short, Home::Drawing, 0, 0, 8},
    {u"CELTSCALE", Kind::Real, Home::Drawing, 1, 1e-99, 1e99},
    {u"CMDECHO", Kind::Short, Home::Session, 1, 0, 1},
    {u"COLORTHEME", Kind::Short, Home::User, 0, 0, 1},
    {u"DIMSCALE", Kind::Real, Home::Drawing, 1, 0, 1e99},
    {u"ELEVATION", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"EXTMAX", Kind::Point, Home::Drawing, 0, 0, 0, true},
    {u"EXTMIN", Kind::Point, Home::Drawing, 0, 0, 0, true},
    {u"FILEDIA", Kind::Short, Home::User, 1, 0, 1},
    {u"FILLMODE", Kind::Short, Home::Drawing, 1, 0, 1},
    {u"INSBASE", Kind::Point, Home::Drawing, 0, 0, 0},
    {u"INSUNITS", Kind::Short, Home::Drawing, 1, 0, 24},
    {u"LIMCHECK", Kind::Short, Home::Drawing, 0, 0, 1},
    {u"LIMMAX", Kind::Point, Home::Drawing, 0, 0, 0},
    {u"LIMMIN", Kind::Point, Home::Drawing, 0, 0, 0},
    {u"LTSCALE", Kind::Real, Home::Drawing, 1, 1e-99, 1e99},
    {u"LUNITS", Kind::Short, Home::Drawing, 2, 1, 5},
    {u"LUPREC", Kind::Short, Home::Drawing, 4, 0, 8},
    {u"MIRRTEXT", Kind::Short, Home::Drawing, 0, 0, 1},
    {u"ORTHOMODE", Kind::Short, Home::Drawing, 0, 0, 1},
    {u"PDMODE", Kind::Short, Home::Drawing, 0, 0, 100},
    {u"PDSIZE", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"PLINEGEN", Kind::Short, Home::Drawing, 0, 0, 1},
    {u"PSLTSCALE", Kind::Short, Home::Drawing, 1, 0, 1},
    {u"QTEXTMODE", Kind::Short, Home::Drawing, 0, 0, 1},
    {u"REGENMODE", Kind::Short, Home::Drawing, 1, 0, 1},
    {u"SSKEEPCREATE", Kind::Short, Home::User, 1, 0, 1},
    {u"SSLOCATE", Kind::Short, Home::User, 1, 0, 1},
    {u"SSMAUTOOPEN", Kind::Short, Home::User, 1, 0, 1},
    {u"SSMPOLLTIME", Kind::Short, Home::User, 60, 20, 600},
    {u"SSMSHEETSTATUS", Kind::Short, Home::User, 2, 0, 2},
    {u"TEXTSIZE", Kind::Real, Home::Drawing, 0.2, 1e-99, 1e99},
    {u"THICKNESS", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"USERI1", Kind::Short, Home::Drawing, 0, 0, 0},
    {u"USERI2", Kind::Short, Home::Drawing, 0, 0, 0},
    {u"USERI3", Kind::Short, Home::Drawing, 0, 0, 0},
    {u"USERI4", Kind::Short, Home::Drawing, 0, 0, 0},
    {u"USERI5", Kind::Short, Home::Drawing, 0, 0, 0},
    {u"USERR1", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"USERR2", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"USERR3", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"USERR4", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"USERR5", Kind::Real, Home::Drawing, 0, 0, 0},
    {u"VISRETAIN", Kind::Short, Home::Drawing, 1, 0, 1},
    {u"_KV_INSPECTORCONTROLSTYLES", Kind::Short, Home::Session, 0, 0, 0},
};

const Row* rowOf(const TvString& name)
{
    for (const Row& row : kRows)
        if (name.compareNoCase(row.name) == 0)
            return &row;
    return nullptr;
}

VariableInfo infoOf(const Row& row)
{
    return {row.name, row.kind, row.home, row.isReadOnly, row.low, row.high};
}

VariableInfo infoOf(const DerivedVariable& variable)
{
    return {variable.name, variable.kind, Home::Derived, !variable.write, 0, 0};
}

TvDbDatabase* drawing()
{
    return tvdbHostApplicationServices()->workingDatabase();
}

db::FieldId fieldOf(const Row& row)
{
    return db::fieldId(TvString(row.name).utf8());
}

/// What was set in this run, of variables that are kept nowhere.
std::map<const Row*, std::int16_t>& sessionValues()
{
    static std::map<const Row*, std::int16_t> values;
    return values;
}

std::int16_t standardOf(const Row& row)
{
    return static_cast<std::int16_t>(row.standard);
}

std::int16_t userValue(const Row& row)
{
    if (const auto unkept = sessionValues().find(&row); unkept != sessionValues().end())
        return unkept->second;
    TarvikConfig* config = tarvConfig();
    TarvikConfigValue kept;
    if (!config || !config->getValue(kConfigScope, TvString(kConfigFolder) + row.name, kept) ||
        kept.type() != TarvikConfigValue::kInt || kept.intValue() < row.low ||
        kept.intValue() > row.high)
        return standardOf(row);
    return static_cast<std::int16_t>(kept.intValue());
}

std::optional<VariableValue> drawingValue(const Row& row)
{
    const TvDbDatabase* database = drawing();
    const db::FieldId field = fieldOf(row);
    if (!database || !database->headerRecord().has(field))
        return std::nullopt;
    const db::Record& header = database->headerRecord();
    switch (row.kind) {
    case Kind::Short: return static_cast<std::int16_t>(header.integer(field));
    case Kind::Real: return header.real(field);
    case Kind::Point: return header.point(field);
    default: return TvString(header.text(field));
    }
}

std::optional<VariableValue> read(const Row& row)
{
    switch (row.home) {
    case Home::User: return userValue(row);
    case Home::Drawing: return drawingValue(row);
    default: {
        const auto kept = sessionValues().find(&row);
        return kept == sessionValues().end() ? standardOf(row) : kept->second;
    }
    }
}

bool isInRange(const Row& row, const VariableValue& value)
{
    const auto fits = [&](double number) {
        return std::isfinite(number) &&
               (row.low == row.high || (number >= row.low && number <= row.high));
    };
    if (const auto* number = std::get_if<std::int16_t>(&value))
        return fits(*number);
    if (const auto* number = std::get_if<double>(&value))
        return fits(*number);
    if (const auto* point = std::get_if<db::Point>(&value))
        return std::isfinite(point->x) && std::isfinite(point->y) && std::isfinite(point->z);
    return true;
}

bool writeToDrawing(const Row& row, const VariableValue& value)
{
    TvDbDatabase* database = drawing();
    const db::FieldId field = fieldOf(row);
    if (!database || !database->headerRecord().has(field))
        return false;
    db::RecordEditor header = database->editHeader();
    switch (row.kind) {
    case Kind::Short: return header.setInteger(field, std::get<std::int16_t>(value));
    case Kind::Real: return header.setReal(field, std::get<double>(value));
    case Kind::Point: return header.setPoint(field, std::get<db::Point>(value));
    default: return header.setText(field, std::get<TvString>(value));
    }
}

/// Where it cannot be kept it holds until the end of the program.
void writeOfUser(const Row& row, std::int16_t value)
{
    TarvikConfig* config = tarvConfig();
    if (config && config->setValue(kConfigScope, TvString(kConfigFolder) + row.name,
                                   TarvikConfigValue::ofInt(value)))
        sessionValues().erase(&row);
    else
        sessionValues()[&row] = value;
}

bool write(const Row& row, const VariableValue& value)
{
    switch (row.home) {
    case Home::User: writeOfUser(row, std::get<std::int16_t>(value)); return true;
    case Home::Drawing: return writeToDrawing(row, value);
    default: sessionValues()[&row] = std::get<std::int16_t>(value); return true;
    }
}

/// The value as the kind wants it: whole numbers where they fit, a real from any number.
std::optional<VariableValue> converted(Kind kind, const VariableValue& value)
{
    const auto* whole = std::get_if<std::int16_t>(&value);
    if (kind == Kind::Real && whole)
        return static_cast<double>(*whole);
    const bool suits = (kind == Kind::Short && whole) ||
                       (kind == Kind::Real && std::holds_alternative<double>(value)) ||
                       (kind == Kind::Text && std::holds_alternative<TvString>(value)) ||
                       (kind == Kind::Point && std::holds_alternative<db::Point>(value));
    return suits ? std::optional(value) : std::nullopt;
}

std::optional<double> numberFrom(std::u16string_view text)
{
    std::string plain;
    for (const TvChar unit : text) {
        if (unit > 0x7E)
            return std::nullopt;
        plain += static_cast<char>(unit);
    }
    if (plain.starts_with('+'))
        plain.erase(0, 1);
    double number = 0;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), number);
    if (error != std::errc() || end != plain.data() + plain.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::optional<VariableValue> pointFrom(std::u16string_view text)
{
    db::Point point{0, 0, 0};
    double* const parts[] = {&point.x, &point.y, &point.z};
    std::size_t count = 0;
    for (; count < std::size(parts); ++count) {
        const std::size_t comma = text.find(u',');
        const std::optional<double> number = numberFrom(text.substr(0, comma));
        if (!number)
            return std::nullopt;
        *parts[count] = *number;
        if (comma == std::u16string_view::npos)
            return count >= 1 ? std::optional<VariableValue>(point) : std::nullopt;
        text.remove_prefix(comma + 1);
    }
    return std::nullopt;
}

TvString numberText(double number)
{
    char digits[40];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    return TvString(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

} // namespace

std::vector<VariableInfo> systemVariables()
{
    std::vector<VariableInfo> all;
    for (const Row& row : kRows)
        all.push_back(infoOf(row));
    for (const DerivedVariable& derived : derivedVariables())
        all.push_back(infoOf(derived));
    std::ranges::sort(all, {}, [](const VariableInfo& info) { return TvString(info.name); });
    return all;
}

std::optional<VariableInfo> systemVariable(const TvString& name)
{
    if (const Row* row = rowOf(name))
        return infoOf(*row);
    if (const DerivedVariable* derived = derivedVariable(name))
        return infoOf(*derived);
    return std::nullopt;
}

std::optional<VariableValue> variable(const TvString& name)
{
    if (const Row* row = rowOf(name))
        return read(*row);
    const DerivedVariable* derived = derivedVariable(name);
    TvDbDatabase* database = drawing();
    return derived && database ? derived->read(*database) : std::nullopt;
}

bool setVariable(const TvString& name, const VariableValue& value)
{
    if (const DerivedVariable* derived = derivedVariable(name)) {
        const std::optional<VariableValue> wanted = converted(derived->kind, value);
        return wanted && derived->write && drawing() && derived->write(*drawing(), *wanted);
    }
    const Row* row = rowOf(name);
    const std::optional<VariableValue> wanted =
        row && !row->isReadOnly ? converted(row->kind, value) : std::nullopt;
    if (!wanted || !isInRange(*row, *wanted))
        return false;
    if (read(*row) == wanted)
        return true;
    if (!write(*row, *wanted))
        return false;
    if (TvEditor* editor = tvedEditor())
        editor->fireSysVarChanged(row->name);
    tellSheetSetModule(row->name, *wanted);
    return true;
}

std::optional<VariableValue> parsedValue(VariableKind kind, const TvString& text)
{
    if (kind == Kind::Text)
        return text;
    if (kind == Kind::Point)
        return pointFrom(text);
    const std::optional<double> number = numberFrom(text);
    if (!number)
        return std::nullopt;
    if (kind == Kind::Real)
        return *number;
    if (*number != std::trunc(*number) || std::abs(*number) > 32767)
        return std::nullopt;
    return static_cast<std::int16_t>(*number);
}

TvString valueText(const VariableValue& value)
{
    if (const auto* whole = std::get_if<std::int16_t>(&value))
        return TvString().format(u"%d", *whole);
    if (const auto* real = std::get_if<double>(&value))
        return numberText(*real);
    if (const auto* point = std::get_if<db::Point>(&value))
        return numberText(point->x) + u"," + numberText(point->y) + u"," + numberText(point->z);
    return std::get<TvString>(value);
}

} // namespace ed

namespace {

constexpr std::int16_t kReal = 5001, kPoint = 5009;

std::optional<ed::VariableValue> valueOf(const resbuf& item)
{
    switch (tvutResbufKind(item.restype)) {
    case TvResbufKind::Short: return item.resval.rint;
    case TvResbufKind::Long: {
        const std::int32_t number = item.resval.rlong;
        if (number < INT16_MIN || number > INT16_MAX)
            return static_cast<double>(number);
        return static_cast<std::int16_t>(number);
    }
    case TvResbufKind::Real: return item.resval.rreal;
    case TvResbufKind::Text: return TvString(item.resval.rstring);
    case TvResbufKind::Point: {
        const double* at = item.resval.rpoint;
        return db::Point{at[0], at[1], at[2]};
    }
    default: return std::nullopt;
    }
}

/// A text that the item holds belongs to it and goes.
void become(resbuf& item, std::int16_t code)
{
    const TvResbufPtr made(tvutNewRb(code));
    std::swap(item.restype, made->restype);
    std::swap(item.resval, made->resval);
}

} // namespace

int tvedGetVar(const TvChar* name, resbuf* out)
{
    const std::optional<ed::VariableValue> value =
        name && out ? ed::variable(TvString(name)) : std::nullopt;
    if (!value)
        return TvStatus::InvalidInput;
    if (const auto* whole = std::get_if<std::int16_t>(&*value)) {
        become(*out, TvStatus::ShortItem);
        out->resval.rint = *whole;
    } else if (const auto* real = std::get_if<double>(&*value)) {
        become(*out, kReal);
        out->resval.rreal = *real;
    } else if (const auto* point = std::get_if<db::Point>(&*value)) {
        become(*out, kPoint);
        out->resval.rpoint[0] = point->x;
        out->resval.rpoint[1] = point->y;
        out->resval.rpoint[2] = point->z;
    } else {
        become(*out, TvStatus::TextItem);
        tvutSetText(*out, std::get<TvString>(*value));
    }
    return TvStatus::Normal;
}

int tvedSetVar(const TvChar* name, const resbuf* value)
{
    const std::optional<ed::VariableValue> wanted = name && value ? valueOf(*value) : std::nullopt;
    return wanted && ed::setVariable(TvString(name), *wanted) ? static_cast<int>(TvStatus::Normal)
                                                              : TvStatus::InvalidInput;
}
