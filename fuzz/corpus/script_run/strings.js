var s = 'Hello, world  of  text ';
var parts = s.split(' ');
var t = s.trim().toUpperCase().replace('O', '0') + s.slice(-3, -1) + s.substring(5, 1);
var n = s.indexOf('o', 5) + s.lastIndexOf('o') + s.search('w') + s.charCodeAt(2);
var u = String.fromCharCode(72, 105) + s.charAt(1) + 'x'.concat(1, null) + (new String('abc')).length;
var c = 'a'.localeCompare('b') + ''.split('').length;
