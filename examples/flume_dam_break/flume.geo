// A flume that narrows to a throat, where the gate stands, and widens again; lengths in metres.
length = 21.2;  gate = 8.5;  narrows_from = 5;  wide_again = 16.5;
half_width = 0.7;  half_throat = 0.3;
size = 0.107;

// Half the width at x: a smooth cubic on each side of the gate.
Macro HalfWidth
  t = 0;
  If (x > narrows_from && x <= gate)
    t = (x - narrows_from) / (gate - narrows_from);
  ElseIf (x > gate && x < wide_again)
    t = (wide_again - x) / (wide_again - gate);
  EndIf
  half = half_width - (half_width - half_throat) * t * t * (3 - 2 * t);
Return

// The walls, by way of 20 points, and the lines across, from right to left.
stations[] = {0, narrows_from, gate, wide_again, length - 1, length};
For k In {0 : 5}
  x = stations[k];
  Call HalfWidth;
  right[k] = newp;  Point(right[k]) = {x, -half, 0, size};
  left[k] = newp;   Point(left[k]) = {x, half, 0, size};
  across[k] = newl;  Line(across[k]) = {right[k], left[k]};
EndFor
For k In {0 : 4}
  right_points[] = {right[k]};
  left_points[] = {left[k]};
  For i In {1 : 19}
    x = stations[k] + (stations[k + 1] - stations[k]) * i / 20;
    Call HalfWidth;
    p = newp;  Point(p) = {x, -half, 0, size};  right_points[] += {p};
    p = newp;  Point(p) = {x, half, 0, size};   left_points[] += {p};
  EndFor
  right_wall[k] = newl;  Spline(right_wall[k]) = {right_points[], right[k + 1]};
  left_wall[k] = newl;   Spline(left_wall[k]) = {left_points[], left[k + 1]};
  loop = newll;  Curve Loop(loop) = {right_wall[k], across[k + 1], -left_wall[k], -across[k]};
  part[k] = news;  Plane Surface(part[k]) = {loop};
EndFor

Physical Curve("gate") = {across[2]};  // discharges are positive to the right of a line
Physical Curve("outlet") = {across[4]};
Physical Curve("end") = {across[5]};
Physical Surface("reservoir") = {part[0], part[1]};
Physical Surface("channel") = {part[2], part[3], part[4]};
Mesh.Algorithm = 5;  // Delaunay
