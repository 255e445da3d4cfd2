// A bay-like closed curve, about 1000 m by 700 m.
n = 72;
For i In {0 : n - 1}
  angle = 2 * Pi * i / n;
  radius = 1 + 0.10 * Sin(2 * angle + 0.4) + 0.07 * Cos(3 * angle) + 0.04 * Sin(5 * angle);
  Point(i + 1) = {480 * radius * Cos(angle) + 560, 330 * radius * Sin(angle) + 400, 0, 38};
EndFor
For i In {1 : n}
  Line(i) = {i, i % n + 1};
EndFor
Curve Loop(1) = {1 : n};
Plane Surface(1) = {1};

// A finer mesh round the island.
Point(n + 1) = {640, 430, 0, 20};
Point{n + 1} In Surface{1};

Physical Curve("shore") = {1 : n};
Physical Surface("lake") = {1};
Mesh.Algorithm = 5;  // Delaunay
