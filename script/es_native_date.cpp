#include "script/es_native_date.h"

#include <QDateTime>
#include <cmath>

#include "script/es_native.h"

namespace regmill::script {

namespace {

enum DateId : int32_t {
  Constructor = 0,
  ToString = 1,
  ToDateString = 2,
  ToTimeString = 3,
  ToLocaleString = 4,
  ToLocaleDateString = 5,
  ToLocaleTimeString = 6,
  ValueOf = 7,
  GetTime = 8,
  GetFullYear = 9,
  GetUTCFullYear = 10,
  GetMonth = 11,
  GetUTCMonth = 12,
  GetDate = 13,
  GetUTCDate = 14,
  GetDay = 15,
  GetUTCDay = 16,
  GetHours = 17,
  GetUTCHours = 18,
  GetMinutes = 19,
  GetUTCMinutes = 20,
  GetSeconds = 21,
  GetUTCSeconds = 22,
  GetMilliseconds = 23,
  GetUTCMilliseconds = 24,
  GetTimezoneOffset = 25,
  SetTime = 26,
  SetMilliseconds = 27,
  SetUTCMilliseconds = 28,
  SetSeconds = 29,
  SetUTCSeconds = 30,
  SetMinutes = 31,
  SetUTCMinutes = 32,
  SetHours = 33,
  SetUTCHours = 34,
  SetDate = 35,
  SetUTCDate = 36,
  SetMonth = 37,
  SetUTCMonth = 38,
  SetFullYear = 39,
  SetUTCFullYear = 40,
  ToUTCString = 41,
};

constexpr double kMsPerDay = 86400000.0;

// The remainder that goes with floor division: never negative for a positive divisor.
double floorMod(double value, double divisor) { return value - std::floor(value / divisor) * divisor; }

// Time values whose day and time of day double arithmetic still gives exactly.
// Beyond them (and for NaN) there is no date: getters give NaN, texts are empty.
bool hasDate(double time) { return std::isfinite(time) && std::fabs(time) <= 9007199254740992.0; }

// The time value's date and time in local time, for the text forms and getTime.
QDateTime toDateTime(double time) {
  if (!hasDate(time)) return QDateTime();
  QDate date = QDate::fromJulianDay(qint64(std::floor(time / kMsPerDay)));
  QTime clock = QTime::fromMSecsSinceStartOfDay(int(floorMod(time, kMsPerDay)));
  return QDateTime(date, clock);
}

// Fields of the time of day, hours first, and their sizes in milliseconds.
constexpr int32_t kHoursField = 0, kMinutesField = 1, kSecondsField = 2, kMillisecondsField = 3;
constexpr double kFieldUnit[4] = {3600000.0, 60000.0, 1000.0, 1.0};
constexpr double kFieldRange[4] = {24.0, 60.0, 60.0, 1000.0};

double timeField(double time, int32_t field) {
  return floorMod(std::floor(time / kFieldUnit[field]), kFieldRange[field]);
}

// Fields of the date, year first; months count from 0 as scripts see them.
constexpr int32_t kYearField = 0, kMonthField = 1, kDayField = 2;

// An argument of a setter: the first is always converted; a later one that was not
// given (or is undefined) is missing.
bool given(int32_t index, int32_t argumentCount, const ESValue* arguments) {
  return index < argumentCount && !arguments[index].isUndefined();
}

bool fitsInt(double value) { return value >= -2147483648.0 && value <= 2147483647.0; }

}  // namespace

ESNativeDate::CivilDate ESNativeDate::dateFromDay(double julianDay) {
  double l = julianDay + 68569;
  double n = std::floor(4 * l / 146097);
  l = l - std::floor((146097 * n + 3) / 4);
  double i = std::floor(4000 * (l + 1) / 1461001);
  l = l - std::floor(1461 * i / 4) + 31;
  double j = std::floor(80 * l / 2447);
  double day = l - std::floor(2447 * j / 80);
  l = std::floor(j / 11);
  double month = j + 2 - 12 * l;
  double year = 100 * (n - 49) + i + l;
  return {year, month, day};
}

double ESNativeDate::dayFromDate(double year, double month, double day) {
  double x = 12 * year + month + 57597;
  double r = floorMod(x, 12);
  return day + std::floor((365 * x + 2 * r + 7) / 12) + std::floor(x / 48) - 32083 + std::floor(x / 4800) -
         std::floor(x / 1200) + 38;
}

double ESNativeDate::timeClip(double time) {
  if (std::isnan(time) || std::isinf(time)) return time;
  if (time > 8.64e15) return std::nan("");
  return time + 0.0;
}

void ESNativeDate::initialise(ESContext& context) {
  ESObject* prototype = context.datePrototype();
  defineNativeConstructor(context, this, "Date", 7, prototype);
  defineNativeFunctions(context, prototype, this, "Date.prototype.",
                        {{"toString", 0, ToString},
                         {"toDateString", 0, ToDateString},
                         {"toTimeString", 0, ToTimeString},
                         {"toLocaleString", 0, ToLocaleString},
                         {"toLocaleDateString", 0, ToLocaleDateString},
                         {"toLocaleTimeString", 0, ToLocaleTimeString},
                         {"valueOf", 0, ValueOf},
                         {"getTime", 0, GetTime},
                         {"getFullYear", 0, GetFullYear},
                         {"getUTCFullYear", 0, GetUTCFullYear},
                         {"getMonth", 0, GetMonth},
                         {"getUTCMonth", 0, GetUTCMonth},
                         {"getDate", 0, GetDate},
                         {"getUTCDate", 0, GetUTCDate},
                         {"getDay", 0, GetDay},
                         {"getUTCDay", 0, GetUTCDay},
                         {"getHours", 0, GetHours},
                         {"getUTCHours", 0, GetUTCHours},
                         {"getMinutes", 0, GetMinutes},
                         {"getUTCMinutes", 0, GetUTCMinutes},
                         {"getSeconds", 0, GetSeconds},
                         {"getUTCSeconds", 0, GetUTCSeconds},
                         {"getMilliseconds", 0, GetMilliseconds},
                         {"getUTCMilliseconds", 0, GetUTCMilliseconds},
                         {"getTimezoneOffset", 0, GetTimezoneOffset},
                         {"setTime", 1, SetTime},
                         {"setMilliseconds", 1, SetMilliseconds},
                         {"setUTCMilliseconds", 1, SetUTCMilliseconds},
                         {"setSeconds", 2, SetSeconds},
                         {"setUTCSeconds", 2, SetUTCSeconds},
                         {"setMinutes", 2, SetMinutes},
                         {"setUTCMinutes", 3, SetUTCMinutes},
                         {"setHours", 4, SetHours},
                         {"setUTCHours", 4, SetUTCHours},
                         {"setDate", 1, SetDate},
                         {"setUTCDate", 1, SetUTCDate},
                         {"setMonth", 2, SetMonth},
                         {"setUTCMonth", 2, SetUTCMonth},
                         {"setFullYear", 3, SetFullYear},
                         {"setUTCFullYear", 3, SetUTCFullYear},
                         {"toUTCString", 0, ToUTCString}});
}

ESObject* ESNativeDate::construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue*) {
  if (function->builtinId != Constructor) raiseBadConstruct(context);
  ESObject* date = context.newObject(context.datePrototype(), this);
  double time = 0;  // any argument at all gives the start of Julian day 0
  if (argumentCount == 0) {
    QDateTime now = QDateTime::currentDateTime();
    time = double(now.date().toJulianDay()) * kMsPerDay + now.time().msecsSinceStartOfDay();
  }
  date->value = ESValue::fromNumber(time);
  return date;
}

void ESNativeDate::call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
                        ESValue* arguments) {
  const int32_t id = function->builtinId;
  if (id < ToString || id > ToUTCString) raiseBadCall(context);
  if (id == GetTimezoneOffset) {
    arguments[0] = ESValue::fromNumber(0);
    return;
  }
  if (id == SetTime) {
    // Takes any receiver and stores the number as it is: no conversion from Unix time.
    double time = timeClip(context.toNumber(arguments[0]));
    if (thisObject != nullptr) thisObject->value = ESValue::fromNumber(time);
    arguments[0] = ESValue::fromNumber(time);
    return;
  }
  // The functions of this class share its klass but are no Date objects.
  if (thisObject == nullptr || thisObject->klass != this || thisObject->call != nullptr)
    context.raiseTypeError(QStringLiteral("Date object required"));
  double time = context.toNumber(thisObject->value);
  if (id >= SetMilliseconds && id <= SetUTCFullYear) {
    double updated = setField(context, id, time, argumentCount, arguments);
    thisObject->value = ESValue::fromNumber(updated);
    arguments[0] = ESValue::fromNumber(updated);
  } else if (id >= ValueOf && id <= GetUTCMilliseconds) {
    arguments[0] = ESValue::fromNumber(getField(id, time));
  } else {
    arguments[0] = stringValue(context, textForm(id, time));
  }
}

QString ESNativeDate::textForm(int32_t id, double time) const {
  QDateTime moment = toDateTime(time);  // an invalid one gives empty texts
  switch (id) {
    case ToDateString:
    case ToLocaleDateString:
      return moment.date().toString(Qt::TextDate);
    case ToTimeString:
    case ToLocaleTimeString:
      return moment.time().toString(Qt::TextDate);
    default:  // toString, toLocaleString, toUTCString
      return moment.toString(Qt::TextDate);
  }
}

double ESNativeDate::getField(int32_t id, double time) const {
  if (id == ValueOf) return time;
  if (!hasDate(time)) return std::nan("");
  double day = std::floor(time / kMsPerDay);
  switch (id) {
    case GetTime:
      return double(toDateTime(time).toMSecsSinceEpoch());
    case GetFullYear:
    case GetUTCFullYear:
      return dateFromDay(day).year;
    case GetMonth:
    case GetUTCMonth:
      return dateFromDay(day).month - 1;
    case GetDate:
    case GetUTCDate:
      return dateFromDay(day).day;
    case GetDay:
    case GetUTCDay:
      return floorMod(day, 7) + 1;  // Julian day 0 was a Monday, day 1 of the week
    case GetHours:
    case GetUTCHours:
      return timeField(time, kHoursField);
    case GetMinutes:
    case GetUTCMinutes:
      return timeField(time, kMinutesField);
    case GetSeconds:
    case GetUTCSeconds:
      return timeField(time, kSecondsField);
    default:  // the milliseconds
      return timeField(time, kMillisecondsField);
  }
}

double ESNativeDate::setField(ESContext& context, int32_t id, double time, int32_t argumentCount,
                              const ESValue* arguments) const {
  // The setters come in pairs, the local form then the UTC form, which share their code.
  static constexpr int32_t kTimeFields[] = {kMillisecondsField, kSecondsField, kMinutesField, kHoursField};
  static constexpr int32_t kDateFields[] = {kDayField, kMonthField, kYearField};
  const int32_t pair = (id - SetMilliseconds) / 2;
  if (pair < 4) return setTimeFields(context, kTimeFields[pair], time, argumentCount, arguments);
  return setDateFields(context, kDateFields[pair - 4], time, argumentCount, arguments);
}

// Sets the time fields from `firstField` on; later ones not given keep their value.
double ESNativeDate::setTimeFields(ESContext& context, int32_t firstField, double time, int32_t argumentCount,
                                   const ESValue* arguments) const {
  double sum = 0;
  for (int32_t field = kHoursField; field <= kMillisecondsField; ++field) {
    int32_t index = field - firstField;
    double value = index < 0 || (index > 0 && !given(index, argumentCount, arguments))
                       ? timeField(time, field)
                       : context.toNumber(arguments[index]);
    sum += std::floor(value) * kFieldUnit[field];
  }
  return timeClip(sum + std::floor(time / kMsPerDay) * kMsPerDay);
}

// Sets the date fields from `firstField` on; the date must exist, else the time
// value is NaN. Fractions are cut toward zero, as a whole number of days is meant.
double ESNativeDate::setDateFields(ESContext& context, int32_t firstField, double time, int32_t argumentCount,
                                   const ESValue* arguments) const {
  CivilDate current = dateFromDay(std::floor(time / kMsPerDay));
  double fields[3] = {current.year, current.month - 1, current.day};
  for (int32_t field = firstField; field <= kDayField; ++field) {
    int32_t index = field - firstField;
    if (index == 0 || given(index, argumentCount, arguments)) fields[field] = context.toNumber(arguments[index]);
  }
  for (double& field : fields) {
    if (!std::isfinite(field)) return std::nan("");
    field = std::trunc(field);
    if (!fitsInt(field)) return std::nan("");
  }
  const double year = fields[kYearField], month = fields[kMonthField] + 1, day = fields[kDayField];
  if (month < 1 || month > 12 || !QDate::isValid(int(year), int(month), int(day))) return std::nan("");
  return timeClip(dayFromDate(year, month, day) * kMsPerDay + floorMod(time, kMsPerDay));
}

}  // namespace regmill::script
