// Text work over a fixed vocabulary, so that the set of distinct strings stays
// small: split, join, indexOf and toUpperCase on three-word sentences.
var words = "north,east,south,west,up,down,left,right".split(",");
function sentence(i) {
  return words[i % 8] + " " + words[(i >> 3) % 8] + " " + words[(i * 5 + 1) % 8];
}
function run(n) {
  var total = 0;
  for (var i = 0; i < n; i++) {
    var parts = sentence(i).split(" ");
    var upper = parts.join("-").toUpperCase();
    total = (total + upper.length * 7 + upper.indexOf("W") + parts[1].indexOf("t")) % 1000003;
  }
  return total;
}
print(run(200000));
