-- Filter for pandoc that turns a document into a page of the manual: a program's into a man page
-- (-t man), any into an HTML page (-t html).

local man = FORMAT == 'man'
local text = pandoc.utils.stringify

-- The package installs docs/ and examples/ in this directory.
local installed = '/usr/share/doc/ravelink/'

-- Takes the page's title from the first heading; a man page shows it in its header line only.
function Pandoc(doc)
  local title = text(doc.blocks[1])
  doc.meta.pagetitle = title
  if man then
    doc.meta.title = title:upper()
    doc.blocks:remove(1)
  end
  return doc
end

function Header(header)
  if man and header.level == 2 then
    return pandoc.Header(1, text(header):upper())
  end
end

function Code(code)
  return man and pandoc.Strong(code.text) or nil
end

function Link(link)
  if link.target:match('^%a+:') then
    return nil
  end
  if not man then
    link.target = link.target:gsub('%.md', '.html', 1)
    return link
  end
  local program = link.target:match('^(ravelink[%w-]*)%.md')
  if program then
    return {pandoc.Strong(program), '(1)'}
  end
  local path = pandoc.Strong(installed .. ('docs/' .. link.target):gsub('^docs/%.%./', ''))
  link.content:extend({pandoc.Space(), '(', path, ')'})
  return link.content
end

-- Turns the tables of man pages into definition lists: the first column is the term, the second the
-- definition, and each further column a paragraph that begins with its heading.
function Table(wide)
  if not man then
    return nil
  end
  local simple = pandoc.utils.to_simple_table(wide)
  local items = {}
  for _, row in ipairs(simple.rows) do
    local meaning = row[2]
    for column = 3, #row do
      meaning:insert(pandoc.Plain(text(simple.headers[column]) .. ': ' .. text(row[column])))
    end
    table.insert(items, {row[1][1].content, {meaning}})
  end
  return pandoc.DefinitionList(items)
end
