function mk(s) { var c = s; function add(d) { c = c + d; return c; } return add; }
var f = mk(1), total = 0;
for (var i = 0; i < 10; i++) total = total + f(i) % 7 << 1 >>> 0;
var o = {n: '5', list: [1, , 3]};
o.n++; o.list[1] = 'x' + o.n;
with (o) { n *= 2; }
outer: while (1) { switch (total & 3) { case 0: break outer; default: total++; } }
for (var k in o) print(k, o[k], typeof o[k]);
print(total, 1/3, -1 >>> 0, null == undefined, 1 < 0/0, (function (a) { return a; })(4));
new Error('made').message;
