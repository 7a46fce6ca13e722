// A 600x600 Mandelbrot set with 100 iterations: local arithmetic in loops, no allocation.
function mandel(w, h, iters) {
  var count = 0;
  for (var y = 0; y < h; y++) {
    for (var x = 0; x < w; x++) {
      var cr = 2.0 * x / w - 1.5;
      var ci = 2.0 * y / h - 1.0;
      var zr = 0, zi = 0, i = 0;
      while (i < iters && zr * zr + zi * zi < 4.0) {
        var t = zr * zr - zi * zi + cr;
        zi = 2 * zr * zi + ci;
        zr = t;
        i++;
      }
      if (i == iters) count++;
    }
  }
  return count;
}
print(mandel(600, 600, 100));
