"""Whether the programs that the documentation is tried with are those of the sources: a stale one fails confusingly."""

import os

# What is built whole from a folder of its own.
BUILT_FROM = {
    "bin/sorel": "host/sorel/src",
    "bin/zqsim": "simulator/zqsim",
    "lib/libzqsim.so": "simulator/shim",
    "lib/libzqos.so": "platform/zqos/src",
    "lib/ZQUtil.so": "class_modules/ZQUtil/src",
}


def newest_source(folder):
    names = [os.path.join(folder, name) for name in os.listdir(folder) if name.endswith((".cpp", ".h"))]
    return max(names, key=os.path.getmtime)


def complaints(build, root):
    """A sentence for each program that is missing or older than its sources."""
    found = []
    for name, folder in BUILT_FROM.items():
        program, source = os.path.join(build, name), newest_source(os.path.join(root, folder))
        if not os.path.exists(program):
            found.append(f"{program} is missing: run make build")
        elif os.path.getmtime(program) < os.path.getmtime(source):
            found.append(f"{program} is older than {os.path.relpath(source, root)}: run make build")
    return found
