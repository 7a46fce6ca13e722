// The Date type. A Date object's value is its time value: milliseconds counted from
// the start of Julian day 0 in local time, so not the Unix epoch and not UTC. One
// class carries out the constructor and every method of Date.prototype by the
// function's id; the UTC forms are the local ones, since no time zone is applied
// anywhere. The context owns the one instance.
#pragma once
#include <QString>

#include "script/es_object.h"

namespace regmill::script {

class ESNativeDate : public ESClass {
 public:
  ESNativeDate() : ESClass("Date") {}

  // Defines `Date` and the methods of the context's Date.prototype.
  void initialise(ESContext& context);

  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;

  // The calendar of time values, in integer-valued doubles: the proleptic Gregorian
  // calendar with a year 0 before year 1. Months count from 1 here.
  struct CivilDate {
    double year, month, day;
  };
  static CivilDate dateFromDay(double julianDay);
  static double dayFromDate(double year, double month, double day);
  // NaN and the infinities pass; above 8.64e15 is NaN.
  static double timeClip(double time);

 private:
  QString textForm(int32_t id, double time) const;
  double getField(int32_t id, double time) const;
  double setField(ESContext& context, int32_t id, double time, int32_t argumentCount, const ESValue* arguments) const;
  double setTimeFields(ESContext& context, int32_t firstField, double time, int32_t argumentCount,
                       const ESValue* arguments) const;
  double setDateFields(ESContext& context, int32_t firstField, double time, int32_t argumentCount,
                       const ESValue* arguments) const;
};

}  // namespace regmill::script
