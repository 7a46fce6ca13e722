// 300,000 constructions of a small class whose methods live on its prototype:
// `new` with `this` stores, and method calls found one step up the chain.
function Point(x, y) { this.x = x; this.y = y; }
Point.prototype.plus = function (other) { return new Point(this.x + other.x, this.y + other.y); };
Point.prototype.cross = function (other) { return this.x * other.y - this.y * other.x; };
Point.prototype.size = function () { return (this.x < 0 ? -this.x : this.x) + (this.y < 0 ? -this.y : this.y); };
function run(n) {
  var step = new Point(3, -2);
  var here = new Point(0, 0);
  var sum = 0;
  for (var i = 0; i < n; i++) {
    here = here.plus(step);
    if (here.size() > 5000) here.x = i % 7;
    sum = (sum + here.cross(step) + here.size()) % 1000003;
  }
  return sum;
}
print(run(300000));
