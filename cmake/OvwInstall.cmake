# joined below
