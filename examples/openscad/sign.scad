// A sign out of a drawing of "kerno cut --curves lines --layers depth": the letters raised on a plate, engraved into
// it, or cut through it with bridges that hold the counters. sign.sh writes a file for each sign that includes this one
// and gives the first four; lengths are mm.
drawing = "sign.dxf";
variant = "raised";    // raised, engraved, stencil
box = [0, 0, 100, 20]; // of the letters: left, bottom, right, top
counters = [];         // a bridge for each: [x of its middle, bottom and top of the letter around it]

plate = 3;    // thickness
depth = 1;    // of the letters, above the plate or into it
margin = 8;   // of the plate around the letters
corner = 4;   // radius
hole = 3.5;   // diameter of a screw's hole at each end, 0: none
bridge = 1.2; // width

// For corners and holes alone: the letters are made of lines, as fine as --tolerance says.
$fn = 64;

sides = hole > 0 ? hole + margin : 0; // room for the holes

module letters() import(drawing);

module bridges()
  for (b = counters) translate([b[0] - bridge / 2, b[1] - 1]) square([bridge, b[2] - b[1] + 2]);

module outline()
  difference() {
    offset(r = corner) offset(delta = -corner)
      translate([box[0] - margin - sides, box[1] - margin])
        square([box[2] - box[0] + 2 * (margin + sides), box[3] - box[1] + 2 * margin]);
    if (hole > 0)
      for (x = [box[0] - sides, box[2] + sides]) translate([x, (box[1] + box[3]) / 2]) circle(d = hole);
  }

module sign() {
  if (variant == "raised") {
    color("gainsboro") linear_extrude(plate) outline();
    // They reach into the plate, so that both are one body.
    color("firebrick") translate([0, 0, plate / 2]) linear_extrude(plate / 2 + depth) letters();
  } else if (variant == "engraved") {
    difference() {
      linear_extrude(plate) outline();
      translate([0, 0, plate - depth]) linear_extrude(depth + 1) letters();
    }
  } else if (variant == "stencil") {
    linear_extrude(plate) difference() {
      outline();
      difference() { letters(); bridges(); }
    }
  } else {
    assert(false, str("variant: \"", variant, "\" is none of raised, engraved, stencil"));
  }
}

sign();
