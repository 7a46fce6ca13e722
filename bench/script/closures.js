// 1.5 million calls of two closures that update a variable of their maker.
function counter(step) {
  var total = 0;
  function bump() { total = (total + step) % 1000003; return total; }
  return bump;
}
function run(n) {
  var odd = counter(3);
  var even = counter(7);
  var sum = 0;
  for (var i = 0; i < n; i++) {
    if (i % 2 == 0) sum = (sum + even()) % 1000003;
    else sum = (sum + odd()) % 1000003;
  }
  return sum;
}
print(run(1500000));
