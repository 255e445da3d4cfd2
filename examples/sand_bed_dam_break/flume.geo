// A straight flume with a gate in its middle, at x = 0; lengths in metres.
half_length = 3;  width = 0.25;
size = 0.025;
Point(1) = {-half_length, 0, 0, size};
Point(2) = {0, 0, 0, size};
Point(3) = {half_length, 0, 0, size};
Point(4) = {half_length, width, 0, size};
Point(5) = {0, width, 0, size};
Point(6) = {-half_length, width, 0, size};
Line(1) = {1, 2};  Line(2) = {2, 3};  Line(3) = {3, 4};
Line(4) = {4, 5};  Line(5) = {5, 6};  Line(6) = {6, 1};
Line(7) = {2, 5};
Curve Loop(1) = {1, 7, 5, 6};   Plane Surface(1) = {1};
Curve Loop(2) = {2, 3, 4, -7};  Plane Surface(2) = {2};

Physical Curve("gate") = {7};
Physical Curve("end") = {3};
Physical Surface("reservoir") = {1};
Physical Surface("channel") = {2};
Mesh.Algorithm = 5;  // Delaunay
