"""What a static program is linked from, as components of the packages that deliver it.

Read from the maps that the linker leaves in the build folder: NAME.map.lto lists the files that went
into link-time optimization and the libraries, NAME.map is of the link that made the program. Debian's
package database and copyright files have the rest.
"""

import hashlib
import os
import re
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path

from debian.copyright import Copyright

# Names in Debian's copyright files, and in the SPDX list of licenses.
SPDX = {
    "BSL-1": "BSL-1.0",
    "BSD-3-clause": "BSD-3-Clause",
    "Expat": "MIT",
    "RSA-MD": "RSA-MD",
    "Zlib": "Zlib",
}

# The license of the runtime libraries, where a copyright file that is prose says so. It also names
# those of documents and other programs.
PROSE = (
    (
        r"GNU General Public License \(v3 or later\) with version 3\.1 of the GCC\s+"
        r"Runtime Library Exception.*\blibgcc\b.*\blibstdc\+\+-v3\b",
        "GPL-3.0-or-later WITH GCC-exception-3.1",
    ),
    (
        r"\* Most of the GNU C library is under the following copyright:.*?"
        r"GNU Lesser General Public\s+License.*?"
        r"version 2\.1 of the License, or \(at your option\) any later version",
        "LGPL-2.1-or-later",
    ),
)

# The licenses whose text copyright files only refer to, in /usr/share/common-licenses.
COMMON_LICENSES = {"LGPL-2.1-or-later": ["LGPL-2.1", "GPL-2"], "GPL-3.0-or-later": ["GPL-3"]}

# What POCO's libraries contain of other projects: objects, the name, and one of the sources.
EMBEDDED = (
    (r"pcre_\w+\.c", "PCRE", "Foundation/src/pcre_compile.c"),
    (r"(adler32|compress|crc32|deflate|inf\w+|trees|zutil)\.c", "zlib", "Foundation/src/deflate.c"),
    (r"xml\w+\.(c|cpp)", "Expat", "XML/src/xmltok.c"),
    (r"NumericString\.cpp", "double-conversion", "Foundation/src/double-conversion.cc"),
    (r"pdjson\.c", "pdjson", "JSON/src/pdjson.c"),
)


@dataclass
class Component:
    """A package, or a project whose code is in that of another."""

    name: str
    version: str
    license: str
    source: str  # the source package and its version
    copyright: str
    files: list = field(default_factory=list)
    embedded: list = field(default_factory=list)
    patches: list = field(default_factory=list)


def fail(message):
    sys.exit(f"{sys.argv[0]}: {message}")


def sha256(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


def version_of(build):
    """The version that the program shows: release and revision."""
    return (build / "app/version-fields.txt").read_text().split()[0]


def loaded_files(map_file):
    return [Path(name) for name in re.findall(r"^LOAD (.+)$", map_file.read_text(), re.M)]


def archive_members(map_file, library):
    return re.findall(rf"^\S*/{re.escape(library)}\((\S+)\)$", map_file.read_text(), re.M)


def query(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def license_of_prose(text, package):
    found = [spdx for pattern, spdx in PROSE if re.search(pattern, text, re.S)]
    if len(found) != 1:
        fail(f"expected one license in the copyright file of {package}, but found {found}")
    return found[0]


def package_components(files):
    """The packages that installed the files."""
    components = {}
    names = sorted({os.path.normpath(path) for path in files})
    owners = dict(
        reversed(line.split(": ", 1)) for line in query("dpkg-query", "-S", *names).splitlines()
    )
    for path in names:
        package = owners[path]
        if package not in components:
            name, version, source, built_using = query(
                "dpkg-query",
                "-W",
                "-f",
                "${Package}\n${Version}\n${source:Package} ${source:Version}\n${Built-Using}",
                package,
            ).split("\n")
            text = Path(f"/usr/share/doc/{name}/copyright").read_text(encoding="utf-8")
            if built_using:
                source += f", built using {built_using}"
            spdx = license_of_prose(text, name)
            components[package] = Component(name, version, spdx, source, text)
        components[package].files.append(Path(path))
    return list(components.values())


def poco_component(libraries, map_file):
    """POCO, built by scripts/poco-static, which leaves what the source package says of itself."""
    documents = libraries[0].parent.parent / "share/doc/poco"
    text = (documents / "copyright").read_text(encoding="utf-8")
    versions = dict(line.split(" ", 1) for line in (documents / "versions").read_text().splitlines())
    copyright_file = Copyright(text.splitlines(keepends=True))

    def license_of(source):
        name = copyright_file.find_files_paragraph(source).license.synopsis
        return SPDX.get(name) or fail(f"no SPDX name for the license {name} of {source}")

    version = versions["poco"]
    source = f"poco {version}"
    poco = Component("poco", version, "", source, text, files=sorted(libraries))
    poco.patches = (documents / "patches").read_text().split()
    licenses = {"BSL-1.0"}
    for library in libraries:
        folder = library.name[len("libPoco") : -len(".a")]
        for member in archive_members(map_file, library.name):
            code = member[: -len(".o")]
            for pattern, name, its_source in EMBEDDED:
                if re.fullmatch(pattern, code):
                    its_version = versions.get(name, f"in poco {version}")
                    part = Component(name, its_version, license_of(its_source), source, text)
                    if part not in poco.embedded:
                        poco.embedded.append(part)
                    break
            else:
                if not code.endswith(".cpp"):
                    fail(f"unknown code in {library.name}: {member}")
                licenses.add(license_of(f"{folder}/src/{code}"))
    poco.license = " AND ".join(sorted(licenses))
    poco.embedded.sort(key=lambda part: part.name.lower())
    return poco


def components_of(build, program):
    """What is linked into the program, other than our own code."""
    lto_map = build / f"{program}.map.lto"
    system, poco = [], []
    for path in loaded_files(lto_map):
        if path.match("libPoco*.a"):
            poco.append(path)
        elif path.is_relative_to("/usr"):
            system.append(path)
        elif path.is_absolute() and not path.is_relative_to(build) or ".." in path.parts:
            fail(f"{lto_map}: no package is known for {path}")
    return [poco_component(poco, lto_map), *package_components(system)]
