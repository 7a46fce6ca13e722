var o = {a: 1, 'b': [1,,2], 3: function (x) { return x; }};
l: for (var k in o) { switch (k) { case 'a': continue l; default: break; } }
with (o) { a += 2; a++; --o.b[0]; }
do { x = typeof o ? void 0 : !1; } while (x && 0 || 1 < 2)
try { y = 1 } catch (e) { } finally { }
throw 'no effect';
