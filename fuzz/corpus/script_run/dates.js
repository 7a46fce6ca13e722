var d = new Date(1);
d.setFullYear(2020, 1, 29);
d.setHours(25, 61, 61, 1001);
var text = d.toString() + d.toDateString() + d.toTimeString() + d.toUTCString();
var f = d.getFullYear() + d.getMonth() + d.getDate() + d.getDay() + d.getHours() + d.getMinutes();
var g = d.getSeconds() + d.getMilliseconds() + d.getTime() - d.valueOf() + d.getTimezoneOffset();
d.setMonth(13); d.setTime(-1e20); d.setDate(3); var now = new Date();
