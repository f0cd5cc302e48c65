#include <cmath>
#include <numbers>

#include <db/ge_values.h>
#include <db/tv_db_database.h>
#include <db/tv_db_host_application_services.h>
#include <ge/tv_ge_matrix3d.h>

#include "ed/prompts.h"
#include "ed/system_variables.h"

namespace ed {

namespace {

TvGePoint3d& lastOne()
{
    static TvGePoint3d point;
    return point;
}

TvDbDatabase* drawing()
{
    return tvdbHostApplicationServices()->workingDatabase();
}

template <class T>
T variableOr(const TvChar* name, T otherwise)
{
    const std::optional<VariableValue> value = variable(name);
    const T* found = value ? std::get_if<T>(&*value) : nullptr;
    return found ? *found : otherwise;
}

/// From the user's coordinates to those of the world.
TvGeMatrix3d userToWorld()
{
    if (!drawing())
        return {};
    const db::Record& header = drawing()->headerRecord();
    const bool isModel = drawing()->tilemode();
    const TvGeVector3d x = db::asVector(header.point(isModel ? "UCSXDIR" : "PUCSXDIR")).normal();
    const TvGeVector3d y = db::asVector(header.point(isModel ? "UCSYDIR" : "PUCSYDIR")).normal();
    const TvGeVector3d z = x.crossProduct(y);
    const TvGePoint3d origin = db::asPoint(header.point(isModel ? "UCSORG" : "PUCSORG"));
    const bool isSystem = std::isfinite(origin.asVector().length()) &&
                          std::abs(z.length() - 1) < 1e-6; // at right angles
    return isSystem ? TvGeMatrix3d::coordinateSystem(origin, x, y, z) : TvGeMatrix3d();
}

/// Numbers with commas between them; empty when there is anything else.
std::vector<double> numbersOf(std::u16string_view text)
{
    std::vector<double> numbers;
    while (true) {
        const std::size_t comma = text.find(u',');
        const std::optional<double> number = typedNumber(TvString(text.substr(0, comma)));
        if (!number || numbers.size() == 3)
            return {};
        numbers.push_back(*number);
        if (comma == std::u16string_view::npos)
            return numbers;
        text.remove_prefix(comma + 1);
    }
}

/// The way that "dx,dy[,dz]" or "d<a" tells, or the place; @p z where none is told.
std::optional<TvGeVector3d> offsetOf(std::u16string_view text, double z)
{
    if (const std::size_t angleMark = text.find(u'<'); angleMark != std::u16string_view::npos) {
        const std::optional<double> distance = typedNumber(TvString(text.substr(0, angleMark)));
        const std::optional<double> angle = typedAngle(TvString(text.substr(angleMark + 1)));
        if (!distance || !angle)
            return std::nullopt;
        return TvGeVector3d(*distance * std::cos(*angle), *distance * std::sin(*angle), z);
    }
    const std::vector<double> numbers = numbersOf(text);
    if (numbers.size() < 2)
        return std::nullopt;
    return TvGeVector3d(numbers[0], numbers[1], numbers.size() == 3 ? numbers[2] : z);
}

} // namespace

std::optional<double> typedNumber(const TvString& text)
{
    const std::optional<VariableValue> value = parsedValue(VariableKind::Real, text);
    return value ? std::optional(std::get<double>(*value)) : std::nullopt;
}

std::optional<double> typedAngle(const TvString& text)
{
    constexpr double kFullTurn = 2 * std::numbers::pi;
    enum { kGrads = 2, kRadians = 3 };
    const std::optional<double> number = typedNumber(text);
    if (!number)
        return std::nullopt;
    const int units = variableOr<std::int16_t>(u"AUNITS", 0);
    const double angle = units == kRadians ? *number
                         : units == kGrads ? *number * kFullTurn / 400
                                           : *number * kFullTurn / 360;
    const bool isClockwise = variableOr<std::int16_t>(u"ANGDIR", 0) != 0;
    return variableOr<double>(u"ANGBASE", 0) + (isClockwise ? -angle : angle);
}

std::optional<TvGePoint3d> typedPoint(const TvString& typed)
{
    std::u16string_view text = typed;
    const auto take = [&](TvChar mark) {
        if (!text.starts_with(mark))
            return false;
        text.remove_prefix(1);
        return true;
    };
    const bool isRelative = take(u'@');
    if (isRelative && text.empty())
        return lastPoint();
    const TvGeMatrix3d toWorld = take(u'*') ? TvGeMatrix3d() : userToWorld();
    const double elevation = isRelative ? 0 : variableOr<double>(u"ELEVATION", 0);
    const std::optional<TvGeVector3d> told = offsetOf(text, elevation);
    if (!told)
        return std::nullopt;
    return isRelative ? lastPoint() + toWorld * *told : toWorld * (TvGePoint3d() + *told);
}

TvGePoint3d lastPoint()
{
    return lastOne();
}

void setLastPoint(const TvGePoint3d& point)
{
    lastOne() = point;
}

} // namespace ed
