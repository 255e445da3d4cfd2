#!/usr/bin/python3
"""Prints what independent readers find in an exported file.

read_export.py netcdf FILE VARIABLE [RECORD]    values, one a line, "nan" where there is none
read_export.py netcdf-names FILE VARIABLE       names, one a line
read_export.py netcdf-structure FILE            dimensions, variables and attributes as JSON
read_export.py netcdf-beginnings WHOLE FILE...  numbers of times, all of which WHOLE begins with
read_export.py vtu FILE NAME [COMPONENT]        values of an array; "points", "cells" or "types" too
read_export.py geotiff FILE                     everything as JSON
"""
import json
import sys


def print_values(values):
    for value in values:
        print(f"{value:.6g}")


def netcdf(path, name, record=None):
    from netCDF4 import Dataset

    with Dataset(path) as file:
        values = file[name][:] if record is None else file[name][int(record)]
        print_values(values.astype(float).filled(float("nan")).ravel())


def netcdf_names(path, name):
    from netCDF4 import Dataset

    with Dataset(path) as file:
        print("\n".join(file[name][:]))


def netcdf_structure(path):
    from netCDF4 import Dataset

    def plain(value):
        value = value.item() if hasattr(value, "item") else value
        return "nan" if value != value else value  # which JSON does not know

    def attributes(thing):
        return {key: plain(thing.getncattr(key)) for key in thing.ncattrs()}

    with Dataset(path) as file:
        print(json.dumps({
            "format": file.data_model,
            "attributes": attributes(file),
            "unlimited": [d.name for d in file.dimensions.values() if d.isunlimited()],
            "dimensions": {name: len(d) for name, d in file.dimensions.items()},
            "variables": {name: {"type": str(v.dtype), "dimensions": list(v.dimensions),
                                 "attributes": attributes(v)}
                          for name, v in file.variables.items()}}))


def netcdf_beginnings(whole, *paths):
    from netCDF4 import Dataset
    from numpy import array_equal

    with Dataset(whole) as expected:
        expected.set_auto_mask(False)
        for path in paths:
            with Dataset(path) as file:
                file.set_auto_mask(False)
                count = len(file["time"])
                for name, variable in file.variables.items():
                    if variable.dimensions[:1] == ("time",):
                        if not array_equal(variable[:], expected[name][:count], equal_nan=True):
                            sys.exit(f"{path}: {name} differs")
                print(count)


def vtu(path, name, component=None):
    import meshio

    mesh = meshio.read(path)
    if name == "points":
        print_values(mesh.points.ravel())
    elif name == "cells":
        print_values(mesh.cells[0].data.ravel())
    elif name == "types":
        print("\n".join(block.type for block in mesh.cells))
    else:
        values = mesh.cell_data[name][0]
        print_values(values if component is None else values[:, int(component)])


def geotiff(path):
    from osgeo import gdal

    gdal.UseExceptions()
    dataset = gdal.Open(path)
    band = dataset.GetRasterBand(1)
    reference = dataset.GetSpatialRef()
    print(json.dumps({
        "columns": dataset.RasterXSize, "rows": dataset.RasterYSize,
        "transform": dataset.GetGeoTransform(),
        "no data": band.GetNoDataValue(), "unit": band.GetUnitType(),
        "description": band.GetDescription(),
        "epsg": reference.GetAuthorityCode(None) if reference else "",
        "values": band.ReadAsArray().astype(float).tolist()}))


if __name__ == "__main__":
    {"netcdf": netcdf, "netcdf-names": netcdf_names, "netcdf-structure": netcdf_structure,
     "netcdf-beginnings": netcdf_beginnings, "vtu": vtu, "geotiff": geotiff}[sys.argv[1]](*sys.argv[2:])
