-- Makes pages of the manual out of our documents: of a program's a man page (pandoc -t man), of each
-- one of HTML (-t html).

local man = FORMAT == 'man'
local text = pandoc.utils.stringify

-- Where the package installs the documents, and the examples beside their folder.
local installed = '/usr/share/doc/ravelink/'

-- The first heading is the page's title, which a man page has in its head line instead.
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
  local place = pandoc.Strong(installed .. ('docs/' .. link.target):gsub('^docs/%.%./', ''))
  link.content:extend({pandoc.Space(), '(', place, ')'})
  return link.content
end

-- A table becomes the indented list that man pages have: the first column names what the second one
-- says, and a further column follows under its own heading.
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
