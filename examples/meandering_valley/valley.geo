// A valley of 6 km by 900 m along an arc, and the channel that meanders in it; lengths in metres.
// s runs down the valley along its axis, n to the left of it.
length = 6000;  half_width = 450;
half_bed = 20;  half_channel = 40;  // half widths of the channel at its bed and between bank tops
channel_size = 20;  hill_size = 60;
radius = 8000;  centre_x = 615000;  centre_y = 5226600;  // the arc, in projected coordinates

// The channel's axis: meanders that fade out at both ends. From `at` to its offset n.
Macro Axis
  n = 170 * (1 - Cos(Pi * at / length)^16) * Sin(2 * Pi * at / 1450 + 0.5 * Sin(at / 520));
Return

// A point beside the axis at `station`, `offset` to its left: on the square to the channel.
Macro ChannelPoint
  at = station + 1;
  Call Axis;  // nothing may follow a call on its line
  ahead = n;
  at = station - 1;
  Call Axis;
  slope = (ahead - n) / 2;
  at = station;
  Call Axis;
  run = Sqrt(1 + slope^2);
  s = station - offset * slope / run;
  n = n + offset / run;
  size = channel_size;
  Call ValleyPoint;
Return

// A point at s and n.
Macro ValleyPoint
  angle = (s - length / 2) / radius;
  p = newp;
  Point(p) = {centre_x + (radius + n) * Sin(angle), centre_y + (radius + n) * Cos(angle), 0, size};
Return

// Six lines down the valley, from right to left: hillside, bank tops and toes, hillside.
// Sections cut them into four reaches.
stations[] = {0, 600, 3000, 5400, length};
offsets[] = {-half_width, -half_channel, -half_bed, half_bed, half_channel, half_width};
step = 50;  // between the points of a spline
For k In {0 : 4}
  For i In {0 : 5}
    station = stations[k];  offset = offsets[i];
    If (i == 0 || i == 5)
      s = station;  n = offset;  size = hill_size;
      Call ValleyPoint;
    Else
      Call ChannelPoint;
    EndIf
    corner[6 * k + i] = p;
  EndFor
  For i In {0 : 4}  // the line across at this station, from right to left
    across[5 * k + i] = newl;
    Line(across[5 * k + i]) = {corner[6 * k + i], corner[6 * k + i + 1]};
  EndFor
EndFor
For k In {0 : 3}
  For i In {0 : 5}
    points[] = {corner[6 * k + i]};
    For station In {stations[k] + step : stations[k + 1] - step : step}
      offset = offsets[i];
      If (i == 0 || i == 5)
        s = station;  n = offset;  size = hill_size;
        Call ValleyPoint;
      Else
        Call ChannelPoint;
      EndIf
      points[] += {p};
    EndFor
    along[6 * k + i] = newl;
    Spline(along[6 * k + i]) = {points[], corner[6 * (k + 1) + i]};
  EndFor
  For i In {0 : 4}
    loop = newll;
    Curve Loop(loop) = {along[6 * k + i], across[5 * (k + 1) + i],
                        -along[6 * k + i + 1], -across[5 * k + i]};
    part[5 * k + i] = news;
    Plane Surface(part[5 * k + i]) = {loop};
  EndFor
EndFor

// From right to left: discharges are positive downstream.
Physical Curve("inflow") = {across[{1 : 3}]};
Physical Curve("upper") = {across[{5 : 9}]};
Physical Curve("middle") = {across[{10 : 14}]};
Physical Curve("lower") = {across[{15 : 19}]};
Physical Curve("outflow") = {across[{20 : 24}]};

// A surface may be part of several groups: what friction and soil tell apart, and what rain does.
Physical Surface("bed") = {part[{2 : 17 : 5}]};
Physical Surface("banks") = {part[{1 : 16 : 5}], part[{3 : 18 : 5}]};
Physical Surface("plain") = {part[{0 : 15 : 5}], part[{4 : 19 : 5}]};
Physical Surface("upper half") = {part[{0 : 9}]};
Physical Surface("lower half") = {part[{10 : 19}]};
Mesh.Algorithm = 5;  // Delaunay
