"""Run by InstallConsumer.cmake with the installed python folder on PYTHONPATH and no content folder:
the installed module, its libraries and its content are found from the prefix alone."""
import kxtypes

steel = kxtypes.find_material("CorvexMaterial-018")
answer = kxtypes.run("Geometry.DotProduct", kxtypes.Vector3d(1, 0, 0), kxtypes.Vector3d(0.5, 0, 0))
print(kxtypes.__file__, steel.name, answer)
