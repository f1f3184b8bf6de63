#!/usr/bin/env python3
"""Builds the Windows Installer package of Brevantis.ocx with wixl.

  make_msi.py ROWS.tsv SERVER_PATH VERSION ARCH OCX CHM OUT.msi

The package puts the control and its help file into the system folder of
ARCH (x86: where 32-bit hosts look, SysWOW64 on 64-bit Windows; x64:
System32) and writes the registration's own values, ROWS.tsv as
registration_rows.exe lists them for a server at SERVER_PATH, through the
installer's Registry table, so that repair and uninstall know every one.
One upgrade code per architecture: a newer package replaces an older one.
"""
import os
import re
import subprocess
import sys
from xml.sax.saxutils import quoteattr

# Fixed for the life of the product: Windows Installer finds earlier
# versions, and the component's registration, by them.
UPGRADE_CODE = {'x86': '4f6b0d2e-8a51-4c1e-9b7a-2d3e5f60a1b1', 'x64': '4f6b0d2e-8a51-4c1e-9b7a-2d3e5f60a1b2'}
COMPONENT_GUID = {'x86': '4f6b0d2e-8a51-4c1e-9b7a-2d3e5f60a1c1', 'x64': '4f6b0d2e-8a51-4c1e-9b7a-2d3e5f60a1c2'}
SYSTEM_FOLDER = {'x86': 'SystemFolder', 'x64': 'System64Folder'}


def formatted(text, server_path, folder_property):
    """A registry text in the installer's Formatted form: brackets escaped,
    the server's path turned into the installed file's, its folder into the
    system folder (whose property ends with a backslash)."""
    text = re.sub(r'[\[\]]', lambda m: '[\\%s]' % m.group(0), text)
    text = text.replace(server_path, '[#Brevantis.ocx]')
    folder = server_path.rsplit('\\', 1)[0]
    return text.replace(folder + '\\', '[%s]' % folder_property).replace(folder, '[%s]' % folder_property)


def registry_values(rows_path, server_path, folder_property):
    lines = []
    for line in open(rows_path, encoding='utf-8').read().splitlines():
        key, name, value = line.split('\t')
        name_attr = ' Name=%s' % quoteattr(name) if name else ''
        lines.append('          <RegistryValue Root="HKCR" Key=%s%s Value=%s Type="string"/>'
                     % (quoteattr(key), name_attr, quoteattr(formatted(value, server_path, folder_property))))
    if not lines:
        sys.exit('make_msi: %s lists no registry values' % rows_path)
    return '\n'.join(lines)


def wxs(rows, version, arch, ocx, chm):
    win64 = ' Win64="yes"' if arch == 'x64' else ''
    return '''<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Product Id="*" Name="Brevantis ActiveX Control" Language="1033" Version="%(version)s"
           Manufacturer="Ostrel Edizioni" UpgradeCode="%(upgrade)s">
    <Package InstallerVersion="200" Compressed="yes" InstallScope="perMachine"
             Description="Brevantis.ocx and Brevantis.chm, registered"/>
    <MajorUpgrade DowngradeErrorMessage="A newer version of the Brevantis control is already installed."/>
    <Media Id="1" Cabinet="brevantis.cab" EmbedCab="yes"/>
    <Directory Id="TARGETDIR" Name="SourceDir">
      <Directory Id="%(folder)s">
        <Component Id="Brevantis" Guid="%(component)s"%(win64)s>
          <File Id="Brevantis.ocx" Name="Brevantis.ocx" Source=%(ocx)s KeyPath="yes"/>
          <File Id="Brevantis.chm" Name="Brevantis.chm" Source=%(chm)s/>
%(rows)s
        </Component>
      </Directory>
    </Directory>
    <Feature Id="Control" Level="1">
      <ComponentRef Id="Brevantis"/>
    </Feature>
  </Product>
</Wix>
''' % dict(version=version, upgrade=UPGRADE_CODE[arch], folder=SYSTEM_FOLDER[arch], component=COMPONENT_GUID[arch],
           win64=win64, ocx=quoteattr(ocx), chm=quoteattr(chm), rows=rows)


def main():
    rows_path, server_path, version, arch, ocx, chm, out = sys.argv[1:]
    # wixl takes sources relative to the folder it runs in.
    here = os.path.dirname(os.path.abspath(out))
    ocx, chm = (os.path.relpath(f, here) for f in (ocx, chm))
    source = out[:-len('.msi')] + '.wxs'
    open(source, 'w', encoding='utf-8').write(
        wxs(registry_values(rows_path, server_path, SYSTEM_FOLDER[arch]), version, arch, ocx, chm))
    subprocess.run(['wixl', '-a', arch, '-o', os.path.basename(out), os.path.basename(source)], cwd=here, check=True)


if __name__ == '__main__':
    main()
