#!/usr/bin/env python3
"""Holds the names that the library exports against its public headers:
check_exports.py CLANG NM LIBRARY ROOT HEADER...

Every exported name must be declared in one of the headers, and everything declared there for export must
be exported. The compiler itself tells what is declared. Prints the names that are amiss.
"""
import json
import subprocess
import sys

# Declared for modules to define.
NOT_OURS = {"mexFunction"}
# Of the C++ library, which some headers include.
NOT_OUR_NAMESPACES = {"std", "__gnu_cxx", "__cxxabiv1"}
# Makes the compiler look at the members of all classes of the library that have a parameter.
INSTANCES = "".join(f"static_assert(sizeof({name}<double>) + sizeof({name}<M<double>>) > 0);\n" for name in ("M", "Mr", "Ms", "Sr", "Mb", "Mc"))
# What comes with a class.
CLASS_DATA = ("vtable for ", "typeinfo for ", "typeinfo name for ", "VTT for ")


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


def demangled(names):
    ordered = sorted(names)
    return set(run("c++filt", text="\n".join(ordered) + "\n").splitlines()) if ordered else set()


def exported_by(nm, library):
    lines = run(nm, "-D", "--defined-only", "--demangle", library).splitlines()
    # After the address and the kind; a version is not part of the name.
    return {line.split(" ", 2)[2].split("@@")[0] for line in lines if line}


class Declarations:
    """Mangled names from the compiler's tree: those that must be exported, and those that may be."""

    FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl"}
    CLASSES = {"CXXRecordDecl", "ClassTemplateSpecializationDecl", "ClassTemplatePartialSpecializationDecl"}

    def __init__(self):
        self.required, self.allowed, self.classes = set(), set(), set()
        self.exported_templates = set()

    def read(self, tree):
        self.find_templates(tree)
        self.walk(tree, False, False)

    @staticmethod
    def children(node):
        return [child for child in node.get("inner", []) if isinstance(child, dict)]

    def is_marked(self, node):
        return any(child.get("kind") == "VisibilityAttr" for child in self.children(node))

    def find_templates(self, node):
        if node.get("kind") == "ClassTemplateDecl":
            if any(child.get("kind") == "CXXRecordDecl" and self.is_marked(child) for child in self.children(node)):
                self.exported_templates.add(node["name"])
        for child in self.children(node):
            if child.get("kind") in ("NamespaceDecl", "ClassTemplateDecl", "LinkageSpecDecl"):
                self.find_templates(child)

    def is_inline(self, node):
        kinds = {child.get("kind") for child in self.children(node)}
        return bool(kinds & {"CompoundStmt", "CXXTryStmt"}) or any(node.get(key) for key in ("inline", "constexpr", "explicitlyDefaulted", "pure"))

    def walk(self, node, in_exported_class, in_template):
        kind, name = node.get("kind"), node.get("mangledName")
        if kind == "NamespaceDecl" and node.get("name") in NOT_OUR_NAMESPACES:
            return
        if kind in self.FUNCTIONS and name and not node.get("explicitlyDeleted") and not node.get("isImplicit"):
            marked = self.is_marked(node)
            if marked or in_exported_class:
                self.allowed.add(name)
            # Members of a template are exported where the library instantiates it.
            if (marked or (in_exported_class and not in_template)) and not self.is_inline(node):
                self.required.add(name)
        elif kind == "VarDecl" and name and self.is_marked(node):
            self.required.add(name)
        exported_class = False
        if kind in self.CLASSES:
            in_template = kind != "CXXRecordDecl"
            exported_class = self.is_marked(node) or (in_template and node.get("name") in self.exported_templates)
            if exported_class and node.get("name"):
                self.classes.add(node["name"])
        if kind not in self.FUNCTIONS:
            for child in self.children(node):
                self.walk(child, exported_class or (in_exported_class and kind in self.CLASSES), in_template)


def main():
    clang, nm, library, root = sys.argv[1:5]
    source = "".join(f'#include "{header}"\n' for header in sys.argv[5:])
    declarations = Declarations()
    declarations.read(json.loads(run(clang, "-std=c++20", "-I" + root, "-fsyntax-only", "-Xclang", "-ast-dump=json", "-x", "c++", "-", text=source + INSTANCES)))
    exported = exported_by(nm, library)
    required = demangled(declarations.required) - NOT_OURS
    allowed = required | demangled(declarations.allowed)

    def belongs(name):
        for prefix in CLASS_DATA:
            if name.startswith(prefix):
                return name[len(prefix):].split("<")[0] in declarations.classes
        # A variable inside a function goes with the function.
        return name in allowed or name.rsplit("::", 1)[0] in allowed
    missing = sorted(required - exported)
    foreign = sorted(name for name in exported if not belongs(name))
    for title, names in (("declared and not exported", missing), ("exported and not declared", foreign)):
        for name in names:
            print(f"{title}: {name}")
    print(f"{len(exported)} names exported, {len(required)} declared for export")
    sys.exit(1 if missing or foreign or len(required) < 100 else 0)


main()
