#!/usr/bin/env python3
"""Builds Brevantis.chm from the type library's IDL, the topics and the README.

  make_help.py IDL README TOPICS_DIR STAGE_DIR OUT_CHM

Every member and class of the IDL that carries a help context gets the page
TOPICS_DIR/<Class>.<Member>.md (or <Class>.md), headed by the member's help
string from the IDL; the project's [MAP] and [ALIAS] come from the same
contexts, so a member without a topic stops the build. The overview and the
information screens are the README's own sections. Pages are written into
STAGE_DIR as HTML and compiled there with chmcmd.

chmcmd records an alias target as the absolute path of the project's folder
plus the file name, and help viewers look that path up inside the .chm. The
compiler therefore runs with the stage folder as its root directory (a user
and mount namespace, no privileges needed), where that path is "/<file>",
exactly the topic's name inside the .chm.
"""
import html
import os
import re
import shutil
import subprocess
import sys

CHMCMD = '/usr/bin/chmcmd'
BLOCK = re.compile(r'\[([^\]]*)\]\s*(interface|dispinterface|coclass)\s+(\w+)[^{]*\{(.*?)\n\s*\};', re.S)
MEMBER = re.compile(r'\[([^\]]*)\]\s*(?:HRESULT|void)\s+(\w+)\s*\(')
HELPSTRING = re.compile(r'helpstring\("((?:[^"\\]|\\.)*)"\)')
HELPCONTEXT = re.compile(r'helpcontext\((\d+)\)')
README_SECTIONS = {'index': None, 'screens': 'Information screens'}


class Topic:
    def __init__(self, cls, member, kind, context, helpstring):
        self.cls, self.member, self.kind = cls, member, kind
        self.context, self.helpstring = context, helpstring

    @property
    def name(self):
        return self.cls + ('.' + self.member if self.member else '')


def class_of(interface):
    """_Brevantis and __Brevantis belong to Brevantis."""
    return interface.lstrip('_')


def read_idl(path):
    """The help file's name and a topic for each helpcontext, in IDL order."""
    text = open(path, encoding='utf-8').read()
    helpfile = re.search(r'helpfile\("([^"]+)"\)', text).group(1)
    topics, seen = [], set()
    for attrs, kind, name, body in BLOCK.findall(text):
        cls = class_of(name)
        if kind == 'coclass':
            topics.append(Topic(cls, None, 'class', int(HELPCONTEXT.search(attrs).group(1)),
                                HELPSTRING.search(attrs).group(1)))
            continue
        for member_attrs, member in MEMBER.findall(body):
            if (cls, member) in seen:
                continue  # a property's put after its get
            seen.add((cls, member))
            if kind == 'dispinterface':
                member_kind = 'event'
            elif 'prop' in member_attrs:
                member_kind = 'property'
            else:
                member_kind = 'method'
            topics.append(Topic(cls, member, member_kind, int(HELPCONTEXT.search(member_attrs).group(1)),
                                HELPSTRING.search(member_attrs).group(1).replace('\\r\\n', ' ')))
    return helpfile, topics


def inline(text):
    """Markdown's inline marks: code, images, links (.md pages become .htm)."""
    parts = re.split(r'(`[^`]*`)', text)
    out = []
    for part in parts:
        if part.startswith('`') and part.endswith('`') and len(part) > 1:
            out.append('<code>%s</code>' % html.escape(part[1:-1]))
            continue
        part = html.escape(part, quote=False)
        part = re.sub(r'!\[([^\]]*)\]\(([^)]+)\)',
                      lambda m: '<img src="%s" alt="%s">' % (os.path.basename(m.group(2)), m.group(1)), part)
        part = re.sub(r'\[([^\]]+)\]\(([^)]+)\)',
                      lambda m: '<a href="%s">%s</a>' % (re.sub(r'\.md$', '.htm', os.path.basename(m.group(2))),
                                                         m.group(1)), part)
        out.append(part)
    return ''.join(out)


def markdown(text):
    """The Markdown the topics and the README use: headings, paragraphs,
    lists, fenced code and inline marks."""
    out, para, items, code = [], [], [], None

    def flush():
        if para:
            out.append('<p>%s</p>' % inline(' '.join(para)))
            para.clear()
        if items:
            out.append('<ul>%s</ul>' % ''.join('<li>%s</li>' % inline(i) for i in items))
            items.clear()

    for line in text.splitlines():
        if code is not None:
            if line.startswith('```'):
                out.append('<pre>%s</pre>' % html.escape('\n'.join(code)))
                code = None
            else:
                code.append(line)
        elif line.startswith('```'):
            flush()
            code = []
        elif line.startswith('<!--') or not line.strip():
            flush()
        elif line.startswith('#'):
            flush()
            level = len(line) - len(line.lstrip('#'))
            out.append('<h%d>%s</h%d>' % (level, inline(line[level:].strip()), level))
        elif line.startswith('- '):
            if para:
                flush()
            items.append(line[2:])
        elif items and line.startswith('  '):
            items[-1] += ' ' + line.strip()
        else:
            para.append(line.strip())
    flush()
    return '\n'.join(out)


def page(title, body):
    # Characters outside ASCII as references: the page reads the same in any code page.
    text = ('<html><head><title>%s</title></head><body>\n%s\n</body></html>\n'
            % (html.escape(title), body))
    return text.encode('ascii', 'xmlcharrefreplace')


def readme_section(readme, heading):
    """The README from its start to its first second-level heading, or the
    section under ## heading."""
    if heading is None:
        return readme.split('\n## ', 1)[0]
    section = readme.split('\n## %s\n' % heading, 1)[1].split('\n## ', 1)[0]
    return '# %s\n%s' % (heading, section)


def check_readme_links(readme, topics):
    """The README's reference links every topic and no other."""
    linked = set(re.findall(r'help/topics/([\w.]+)\.md', readme))
    named = {t.name for t in topics}
    if linked != named:
        sys.exit('make_help: README.md links no topic for %s and links topics of no member: %s' % (
            ', '.join(sorted(named - linked)) or 'none', ', '.join(sorted(linked - named)) or 'none'))


def member_list(topics, cls):
    rows = ['<li><a href="%s.htm">%s</a> (%s): %s</li>' % (t.name, t.member, t.kind, html.escape(t.helpstring))
            for t in topics if t.cls == cls and t.member]
    return '<h2>Members</h2><ul>%s</ul>' % ''.join(rows)


def write_pages(idl, readme_path, topics_dir, stage):
    helpfile, topics = read_idl(idl)
    missing = [t for t in topics if not os.path.exists(os.path.join(topics_dir, t.name + '.md'))]
    if missing:
        sys.exit('make_help: no topic for %s: write %s' % (
            ', '.join('%s (help context %d)' % (t.name, t.context) for t in missing),
            ', '.join(os.path.join(topics_dir, t.name + '.md') for t in missing)))
    if os.path.exists(stage):
        shutil.rmtree(stage)
    os.makedirs(stage)
    files = []

    def write(name, title, body):
        open(os.path.join(stage, name), 'wb').write(page(title, body))
        files.append(name)

    readme = open(readme_path, encoding='utf-8').read()
    check_readme_links(readme, topics)
    for name, heading in README_SECTIONS.items():
        section = readme_section(readme, heading)
        body = markdown(section)
        if heading is None:
            body += '<h2>Contents</h2><ul>%s<li><a href="screens.htm">Information screens</a></li></ul>' % ''.join(
                '<li><a href="%s.htm">%s</a></li>' % (t.cls, t.cls) for t in topics if not t.member)
        write(name + '.htm', heading or 'Brevantis', body)
        for image in re.findall(r'!\[[^\]]*\]\(([^)]+)\)', section):
            shutil.copy(os.path.join(os.path.dirname(readme_path), image), stage)
            files.append(os.path.basename(image))
    for t in topics:
        body = open(os.path.join(topics_dir, t.name + '.md'), encoding='utf-8').read()
        title = t.member or t.cls
        heading = '<h1>%s</h1>\n<p><i>%s</i></p>\n' % (
            html.escape(title), '%s %s' % (t.cls, t.kind) if t.member else 'class')
        extra = member_list(topics, t.cls) if not t.member else ''
        write(t.name + '.htm', title, heading + '<p>%s</p>\n' % html.escape(t.helpstring) + markdown(body) + extra)
    return helpfile, topics, files


def contents(topics):
    """The table of contents: the overview, each class with its members, the screens."""
    def item(name, target):
        return '<LI><OBJECT type="text/sitemap"><param name="Name" value="%s"><param name="Local" value="%s"></OBJECT>\n' % (
            name, target)
    lines = ['<HTML><BODY><UL>\n', item('Brevantis', 'index.htm')]
    for cls in dict.fromkeys(t.cls for t in topics):
        lines.append(item(cls, cls + '.htm') + '<UL>\n')
        lines += [item(t.member, t.name + '.htm') for t in topics if t.cls == cls and t.member]
        lines.append('</UL>\n')
    lines.append(item('Information screens', 'screens.htm'))
    lines.append('</UL></BODY></HTML>\n')
    return ''.join(lines)


def project(helpfile, topics, files):
    lines = ['[OPTIONS]', 'Compiled file=' + helpfile, 'Contents file=contents.hhc',
             'Default topic=index.htm', 'Title=Brevantis', 'Language=0x409 English (United States)', '',
             '[FILES]'] + files + ['', '[MAP]']
    lines += ['#define IDH_%s %d' % (t.name.replace('.', '_'), t.context) for t in topics]
    lines += ['', '[ALIAS]'] + ['IDH_%s=%s.htm' % (t.name.replace('.', '_'), t.name) for t in topics]
    return '\n'.join(lines) + '\n'


def compile_chm(stage, helpfile, out):
    """chmcmd, rooted at the stage folder (see the module's comment)."""
    chmcmd = os.path.realpath(CHMCMD)
    script = ('mkdir -p usr && mount --rbind /usr usr && ln -sfn usr/lib lib && ln -sfn usr/lib64 lib64'
              ' && exec chroot . %s /Brevantis.hhp' % chmcmd)
    result = subprocess.run(['unshare', '--user', '--map-root-user', '--mount', 'sh', '-c', script],
                            cwd=stage, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    built = os.path.join(stage, helpfile)
    if result.returncode != 0 or re.search(r'error|corrupt|not found', result.stdout, re.I) \
            or not os.path.exists(built):
        sys.exit('make_help: chmcmd failed:\n' + result.stdout)
    shutil.copy(built, out)


def main():
    idl, readme, topics_dir, stage, out = sys.argv[1:]
    helpfile, topics, files = write_pages(idl, readme, topics_dir, stage)
    if os.path.basename(out) != helpfile:
        sys.exit('make_help: the type library names %s, the build asks for %s' % (helpfile, out))
    open(os.path.join(stage, 'contents.hhc'), 'w').write(contents(topics))
    open(os.path.join(stage, 'Brevantis.hhp'), 'w').write(project(helpfile, topics, files))
    compile_chm(stage, helpfile, out)


if __name__ == '__main__':
    main()
